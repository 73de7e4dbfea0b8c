// The user's own program for a camera's card or for folders, through GIO.

#include "src/ui/linux/KelvaHelper/opener/FolderViewer.h"

namespace opener {
namespace {

constexpr char kEnding[] = ".desktop";

}  // namespace

FolderViewer::FolderViewer(const char* contentType) : info_(g_app_info_get_default_for_type(contentType, FALSE)) {}

std::string FolderViewer::Name() const {
  return g_app_info_get_display_name(info_.get());
}

std::string FolderViewer::Id() const {
  const char* const id = g_app_info_get_id(info_.get());
  std::string name = id == nullptr ? "" : id;
  if (g_str_has_suffix(name.c_str(), kEnding)) name.resize(name.size() - (sizeof kEnding - 1));
  return name;
}

std::string FolderViewer::Open(const std::string& path) const {
  Error error;
  char* const uri = g_filename_to_uri(path.c_str(), nullptr, error.Receive());
  if (uri == nullptr) return error.Text();
  GList folders{uri, nullptr, nullptr};
  const bool started = g_app_info_launch_uris(info_.get(), &folders, nullptr, error.Receive()) != FALSE;
  g_free(uri);
  return started ? std::string() : error.Text();
}

}  // namespace opener
