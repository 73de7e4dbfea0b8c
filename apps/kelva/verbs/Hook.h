#ifndef KELVA_APPS_KELVA_VERBS_HOOK_H_
#define KELVA_APPS_KELVA_VERBS_HOOK_H_

#include <string>
#include <utility>
#include <vector>

namespace apps {

/// Runs a shell command with these variables added to the environment, its standard output on `outputFd`, and waits for
/// its end. Empty when it ended with 0; otherwise how it ended: "ended with status 3", "was killed by signal 9".
std::string RunCommand(const std::string& command, const std::vector<std::pair<std::string, std::string>>& variables,
                       int outputFd);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_HOOK_H_
