#ifndef KELVA_UI_LINUX_KELVA_HELPER_AGENT_H_
#define KELVA_UI_LINUX_KELVA_HELPER_AGENT_H_

#include <string>
#include <vector>

namespace helper {

/// The whole program but main: does what the arguments ask and returns the exit code that --help documents. Watches
/// until a signal ends it.
int RunAgent(const std::vector<std::string>& arguments);

}  // namespace helper

#endif  // KELVA_UI_LINUX_KELVA_HELPER_AGENT_H_
