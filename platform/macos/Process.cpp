// The process and those that it starts, on macOS.
#include "platform/Process.h"

#include <crt_externs.h>
#include <libproc.h>
#include <mach-o/dyld.h>
#include <stdlib.h>

#include <array>
#include <climits>
#include <cstdint>

namespace platform {

// The path may come with links and dots, as it was started.
std::string OwnProgram() {
  std::array<char, PATH_MAX> asStarted{};
  auto size = static_cast<std::uint32_t>(asStarted.size());
  if (::_NSGetExecutablePath(asStarted.data(), &size) != 0) return {};
  std::array<char, PATH_MAX> path{};
  return ::realpath(asStarted.data(), path.data()) != nullptr ? path.data() : asStarted.data();
}

std::string OwnImage() {
  return OwnProgram();
}

std::string ProcessName(pid_t process) {
  std::array<char, PROC_PIDPATHINFO_MAXSIZE> name{};
  const int length = ::proc_name(process, name.data(), static_cast<std::uint32_t>(name.size()));
  return length > 0 ? std::string(name.data(), static_cast<std::size_t>(length)) : "a process";
}

// A library could not name `environ` there.
char** Environment() {
  return *::_NSGetEnviron();
}

// Only a limit of the size keeps a dump from being written (setrlimit), which POSIX has too.
void ForbidDump() {}

void PassStandardDescriptorsAlone(posix_spawnattr_t& attributes, short flags, posix_spawn_file_actions_t&) {
  ::posix_spawnattr_setflags(&attributes, static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT));
}

}  // namespace platform
