#ifndef KELVA_PLATFORM_PROCESS_H_
#define KELVA_PLATFORM_PROCESS_H_

#include <spawn.h>
#include <sys/types.h>

#include <string>

namespace platform {

/// The path of the program that this process runs; empty when that cannot be told. Any thread.
std::string OwnProgram();
/// A path that starts this program once more, also when another one has taken its name meanwhile if the system can do that.
/// Any thread.
std::string OwnImage();

/// The name of a process; "a process" when it has ended or hides it. Any thread.
std::string ProcessName(pid_t process);

/// The environment: "NAME=value" each, then null. It belongs to the process.
char** Environment();

/// Keeps the memory of this process out of what the system writes down when a program crashes. Any thread.
void ForbidDump();

/// Sets the flags of a program's start (posix_spawnattr_setflags), and lets the program inherit no descriptor but the three
/// standard ones, which `actions` have set before.
void PassStandardDescriptorsAlone(posix_spawnattr_t& attributes, short flags, posix_spawn_file_actions_t& actions);

}  // namespace platform

#endif  // KELVA_PLATFORM_PROCESS_H_
