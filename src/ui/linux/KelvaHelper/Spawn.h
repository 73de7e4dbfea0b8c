#ifndef KELVA_UI_LINUX_KELVA_HELPER_SPAWN_H_
#define KELVA_UI_LINUX_KELVA_HELPER_SPAWN_H_

#include <string>
#include <vector>

namespace helper {

/// Asks the kernel to forget children as they end, so that none is ever left for this process to collect.
void ForgetChildren();

/// Starts `command` (a path, then its arguments) in a session of its own, with every signal at its default and none
/// blocked: what it starts must not inherit the agent's habits. Returns at the program's execve, with 0 or the errno
/// of what failed.
int Spawn(const std::vector<std::string>& command);

}  // namespace helper

#endif  // KELVA_UI_LINUX_KELVA_HELPER_SPAWN_H_
