#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_DESKTOP_APPLICATION_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_DESKTOP_APPLICATION_H_

#include <gio/gdesktopappinfo.h>

#include <string>

#include "src/ui/linux/KelvaHelper/opener/GObjects.h"

namespace opener {

/// A desktop application that is installed for this user.
class DesktopApplication {
 public:
  /// Looks up DESKTOP_ID.desktop in the XDG data folders. False when there is none, when it is marked as hidden, or when
  /// the program that it names is missing.
  explicit DesktopApplication(const std::string& desktopId);
  explicit operator bool() const { return static_cast<bool>(info_); }

  /// The name that people know it by. Only for one that was found.
  std::string Name() const;
  /// Starts it and does not wait for it. Returns an empty text, or the reason why it did not start.
  std::string Launch();

 private:
  Object<GDesktopAppInfo> info_;
};

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_DESKTOP_APPLICATION_H_
