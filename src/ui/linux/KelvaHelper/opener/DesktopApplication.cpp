#include "DesktopApplication.h"

namespace opener {

DesktopApplication::DesktopApplication(const std::string& desktopId)
    : info_(g_desktop_app_info_new((desktopId + ".desktop").c_str())) {}

std::string DesktopApplication::Name() const {
  return g_app_info_get_display_name(G_APP_INFO(info_.get()));
}

std::string DesktopApplication::Launch() {
  Error error;
  if (g_app_info_launch(G_APP_INFO(info_.get()), nullptr, nullptr, error.Receive())) return {};
  return error.Text();
}

}  // namespace opener
