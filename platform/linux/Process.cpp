// The process and those that it starts, on Linux.
#include "platform/Process.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <fstream>

namespace platform {

std::string OwnProgram() {
  std::array<char, PATH_MAX> path{};
  const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
  return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : std::string();
}

std::string OwnImage() {
  return "/proc/self/exe";
}

std::string ProcessName(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  std::getline(file, name);
  return name.empty() ? "a process" : name;
}

char** Environment() {
  return environ;
}

void ForbidDump() {
  ::prctl(PR_SET_DUMPABLE, 0);
}

void PassStandardDescriptorsAlone(posix_spawnattr_t& attributes, short flags, posix_spawn_file_actions_t& actions) {
  ::posix_spawnattr_setflags(&attributes, flags);
  ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
}

}  // namespace platform
