#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_OPENER_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_OPENER_H_

#include <string>
#include <vector>

namespace opener {

/// What the program answers to the agent and to scripts.
enum ExitCode : int {
  kLaunched = 0,
  kLaunchFailed = 1,
  kWrongArguments = 2,
  kNotInstalled = 3,
};

/// The whole program but main: one argument, the desktop id of the application to start. Says on one line what became of
/// it, on standard output when it was started and on standard error otherwise.
int Open(const std::vector<std::string>& arguments);

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_OPENER_H_
