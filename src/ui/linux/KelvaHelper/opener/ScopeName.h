#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_SCOPE_NAME_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_SCOPE_NAME_H_

#include <string>

namespace opener {

/// The name of the unit for one run of a desktop application, by the rule that desktops share:
/// "app-LAUNCHER-APPLICATION-UNIQUE.scope", each part escaped as the service manager asks.
std::string ScopeName(const std::string& desktopId, int process);

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_SCOPE_NAME_H_
