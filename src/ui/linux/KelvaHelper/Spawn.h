#ifndef KELVA_UI_LINUX_KELVA_HELPER_SPAWN_H_
#define KELVA_UI_LINUX_KELVA_HELPER_SPAWN_H_

#include <string>
#include <vector>

namespace helper {

/// Asks the kernel to forget children as they end, so that this process never has to collect one.
void ForgetChildren();

/// Starts `command` (a path, then its arguments) in a session of its own, with every signal at its default and
/// unblocked: the child must not inherit the agent's signal handling. Returns at the program's execve, with 0 or the
/// errno of what failed.
int Spawn(const std::vector<std::string>& command);

}  // namespace helper

#endif  // KELVA_UI_LINUX_KELVA_HELPER_SPAWN_H_
