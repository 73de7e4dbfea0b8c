// Files on macOS.
#include "platform/Files.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>

namespace platform {
namespace {

constexpr mode_t kForAll = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;

}  // namespace

// There is no such call.
int OpenBeneathAtOnce(int, const char*, int, mode_t) {
  errno = ENOSYS;
  return -1;
}

int RenameNoReplace(int folder, const char* from, const char* to) {
  return ::renameatx_np(folder, from, folder, to, RENAME_EXCL);
}

// fsync alone leaves the bytes in the drive's own memory, in any order. A barrier keeps them before what comes later. Some
// file systems, those of a network among them, know neither.
int Flush(int file) {
  if (::fcntl(file, F_BARRIERFSYNC) == 0 || ::fcntl(file, F_FULLFSYNC) == 0) return 0;
  return errno == EINTR ? -1 : ::fsync(file);
}

int FlushFolder(int folder) {
  if (::fcntl(folder, F_FULLFSYNC) == 0) return 0;
  return errno == EINTR ? -1 : ::fsync(folder);
}

void BeginFlush(int) noexcept {}

std::string PathOf(int descriptor) {
  std::array<char, PATH_MAX> path{};
  return ::fcntl(descriptor, F_GETPATH, path.data()) == 0 ? std::string(path.data()) : std::string();
}

// Tries it: umask(2) cannot ask without changing the mask, for all threads. A file that a killed process left has the name of
// an unfinished one, so it is swept away with those.
mode_t ModeOfNewFile(int folder) {
  const std::string name = ".kelva-mode-" + std::to_string(::getpid()) + ".part";
  ::unlinkat(folder, name.c_str(), 0);
  const int probe = ::openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kForAll);
  if (probe < 0) return S_IRUSR | S_IWUSR;
  struct stat status {};
  const bool known = ::fstat(probe, &status) == 0;
  ::unlinkat(folder, name.c_str(), 0);
  ::close(probe);
  return known ? status.st_mode & kForAll : mode_t{S_IRUSR | S_IWUSR};
}

// The lists there are of another kind. A new file takes those entries of its folder that are meant for files.
std::string AccessListOf(int) {
  return {};
}

bool SetAccessList(int, const char*, const std::string&) {
  return false;
}

void RemoveAccessList(int, const char*) {}

timespec ContentChanged(const struct stat& status) {
  return status.st_mtimespec;
}

timespec StatusChanged(const struct stat& status) {
  return status.st_ctimespec;
}

}  // namespace platform
