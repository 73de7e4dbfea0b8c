#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_EXIT_CODE_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_EXIT_CODE_H_

namespace opener {

/// What the program answers to the agent and to scripts.
enum ExitCode : int {
  kLaunched = 0,
  kLaunchFailed = 1,
  kWrongArguments = 2,
  kNotInstalled = 3,
};

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_EXIT_CODE_H_
