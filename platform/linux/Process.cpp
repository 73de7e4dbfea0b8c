// The process and those that it starts, on Linux.
#include "platform/Process.h"

#include <sys/prctl.h>
#include <sys/stat.h>
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

// The program's own path where that still leads to it: the system names a process after the path that started it.
std::string OwnImage() {
  constexpr const char* kImage = "/proc/self/exe";
  struct stat image {};
  struct stat there {};
  std::string path = OwnProgram();
  const bool same = ::stat(kImage, &image) == 0 && ::stat(path.c_str(), &there) == 0 && image.st_dev == there.st_dev &&
                    image.st_ino == there.st_ino;
  return same ? path : kImage;
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
