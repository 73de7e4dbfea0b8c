// Finds an installed desktop application and launches it, through GIO.

#include "src/ui/linux/KelvaHelper/opener/DesktopApplication.h"

#include <unistd.h>

#include <vector>

namespace opener {

namespace {

/// The entry of this file; null when it is hidden, or names a program that is missing.
Object<GDesktopAppInfo> EntryOf(const std::string& path) {
  Object<GDesktopAppInfo> info(g_desktop_app_info_new_from_filename(path.c_str()));
  if (info && g_desktop_app_info_get_is_hidden(info.get())) info.reset();
  return info;
}

/// The folders of desktop entries, the user's own first.
std::vector<std::string> EntryFolders() {
  std::vector<std::string> folders{g_get_user_data_dir()};
  for (const char* const* folder = g_get_system_data_dirs(); *folder != nullptr; ++folder) folders.push_back(*folder);
  for (std::string& folder : folders) folder += "/applications/";
  return folders;
}

/// The first folder that has the entry's file decides, as it does for GIO.
Object<GDesktopAppInfo> EntryByItsFile(const std::string& desktopId) {
  if (desktopId.find('/') != std::string::npos) return nullptr;
  for (const std::string& folder : EntryFolders()) {
    const std::string path = folder + desktopId + ".desktop";
    if (::access(path.c_str(), F_OK) == 0) return EntryOf(path);
  }
  return nullptr;
}

/// GIO's own look-up reads the caches of all folders and starts to watch them, which takes longer than everything else
/// here; it is asked only for an entry that is not at its plain place, such as one in a subfolder.
Object<GDesktopAppInfo> Find(const std::string& desktopId) {
  if (Object<GDesktopAppInfo> info = EntryByItsFile(desktopId)) return info;
  return Object<GDesktopAppInfo>(g_desktop_app_info_new((desktopId + ".desktop").c_str()));
}

}  // namespace

DesktopApplication::DesktopApplication(const std::string& desktopId) : info_(Find(desktopId)) {}

std::string DesktopApplication::Name() const {
  return g_app_info_get_display_name(G_APP_INFO(info_.get()));
}

std::string DesktopApplication::Launch() {
  Error error;
  if (g_app_info_launch(G_APP_INFO(info_.get()), nullptr, nullptr, error.Receive())) return {};
  return error.Text();
}

}  // namespace opener
