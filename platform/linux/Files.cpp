// Files on Linux.
#include "platform/Files.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <stdio.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdio>
#include <fstream>

namespace platform {
namespace {

constexpr mode_t kForAll = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;

constexpr const char* kAccessList = "system.posix_acl_access";

// These calls take no folder beside the path.
std::string PathBelow(int folder, const char* name) {
  return "/proc/self/fd/" + std::to_string(folder) + "/" + name;
}

// umask(2) itself cannot ask without changing it, for all threads.
mode_t Umask() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    mode_t mask = 0;
    if (line.starts_with("Umask:") && std::sscanf(line.c_str() + 6, "%o", &mask) == 1) return mask;
  }
  return S_IRWXG | S_IRWXO;
}

}  // namespace

int OpenBeneathAtOnce(int folder, const char* path, int flags, mode_t mode) {
  open_how how{};
  how.flags = static_cast<unsigned>(flags | O_CLOEXEC);
  how.mode = (flags & O_CREAT) != 0 ? mode : 0;
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS;
  return static_cast<int>(::syscall(SYS_openat2, folder, path, &how, sizeof how));
}

int RenameNoReplace(int folder, const char* from, const char* to) {
  return ::renameat2(folder, from, folder, to, RENAME_NOREPLACE);
}

int Flush(int file) {
  return ::fdatasync(file);
}

int FlushFolder(int folder) {
  return ::fsync(folder);
}

void BeginFlush(int file) noexcept {
  ::sync_file_range(file, 0, 0, SYNC_FILE_RANGE_WRITE);
}

std::string PathOf(int descriptor) {
  std::array<char, PATH_MAX> path{};
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
  return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : std::string();
}

mode_t ModeOfNewFile(int folder) {
  // A file without a name, which nobody else can open. Some file systems have none; those know no default list either.
  const int probe = ::openat(folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, kForAll);
  struct stat status {};
  const bool known = probe >= 0 && ::fstat(probe, &status) == 0;
  if (probe >= 0) ::close(probe);
  return known ? status.st_mode & kForAll : kForAll & ~Umask();
}

std::string AccessListOf(int folder) {
  constexpr std::size_t kLargest = 65'536;
  std::string list(kLargest, '\0');
  const ssize_t size = ::fgetxattr(folder, kAccessList, list.data(), list.size());
  return list.substr(0, size < 0 ? 0 : static_cast<std::size_t>(size));
}

bool SetAccessList(int folder, const char* name, const std::string& list) {
  return ::lsetxattr(PathBelow(folder, name).c_str(), kAccessList, list.data(), list.size(), 0) == 0;
}

void RemoveAccessList(int folder, const char* name) {
  ::lremovexattr(PathBelow(folder, name).c_str(), kAccessList);
}

timespec ContentChanged(const struct stat& status) {
  return status.st_mtim;
}

timespec StatusChanged(const struct stat& status) {
  return status.st_ctim;
}

}  // namespace platform
