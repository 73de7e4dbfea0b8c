#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_OPENER_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_OPENER_H_

#include <string>
#include <vector>

namespace opener {

/// The whole program but main: the desktop id of the application to start, and with --virtual the bus that has the cameras.
/// Shows the cameras as folders when the application is not installed, unless KELVA_ON_PLUG says otherwise. Says on one
/// line what became of each, on standard output when something was started and on standard error otherwise. Returns an
/// ExitCode.
int Open(const std::vector<std::string>& arguments);

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_OPENER_H_
