// Opens the folder that files go into, and resolves names below it without following links.
#include "apps/files/TargetFolder.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"

namespace apps {
namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

int Openat2(int folder, const char* path, int flags, unsigned mode) {
  open_how how{};
  how.flags = static_cast<unsigned>(flags);
  how.mode = (flags & O_CREAT) != 0 ? mode : 0;
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
  return static_cast<int>(::syscall(SYS_openat2, folder, path, &how, sizeof how));
}

// Keeps the same promise on an older kernel: opens one component after the other and refuses ".." and links.
int WalkBeneath(int folder, const std::string& path, int flags, unsigned mode) {
  const std::size_t slash = path.find('/');
  const std::string first = path.substr(0, slash);
  if (first.empty() || first == "..") {
    errno = EXDEV;
    return -1;
  }
  if (slash == std::string::npos) return ::openat(folder, first.c_str(), flags | O_NOFOLLOW, mode);
  const base::FileDescriptor next(::openat(folder, first.c_str(), kFolderFlags | O_NOFOLLOW));
  return next ? WalkBeneath(next.Get(), path.substr(slash + 1), flags, mode) : -1;
}

}  // namespace

int OpenBeneath(int folder, const std::string& path, int flags, unsigned mode) {
  const int fd = Openat2(folder, path.c_str(), flags, mode);
  if (fd >= 0 || (errno != ENOSYS && errno != EPERM)) return fd;
  return WalkBeneath(folder, path, flags, mode);
}

TargetFolder TargetFolder::Open(const std::string& path) {
  base::FileDescriptor folder(::open(path.c_str(), kFolderFlags));
  if (!folder) throw SystemFailure("open the folder " + Printable(path), errno);
  return TargetFolder(std::move(folder), path);
}

TargetFolder TargetFolder::OpenOrMake(const std::string& path) {
  if (::mkdir(path.c_str(), 0777) != 0 && errno != EEXIST) {
    throw SystemFailure("make the folder " + Printable(path), errno);
  }
  return Open(path);
}

TargetFolder TargetFolder::Below(const std::string& name) const {
  if (::mkdirat(Fd(), name.c_str(), 0777) != 0 && errno != EEXIST) {
    throw SystemFailure("make the folder " + Printable(PathOf(name)), errno);
  }
  base::FileDescriptor folder(OpenBeneath(Fd(), name, kFolderFlags, 0));
  if (!folder && errno == ELOOP) {
    throw Failure(ExitCode::kFailed, Printable(PathOf(name)) +
                                         " is a symbolic link and is not followed; replace it by a folder or choose "
                                         "another target.");
  }
  if (!folder) throw SystemFailure("open the folder " + Printable(PathOf(name)), errno);
  return TargetFolder(std::move(folder), PathOf(name));
}

std::string TargetFolder::PathOf(const std::string& name) const {
  if (path_ == ".") return name;
  return path_.ends_with('/') ? path_ + name : path_ + "/" + name;
}

bool TargetFolder::Has(const std::string& name) const {
  struct stat status {};
  return ::fstatat(Fd(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

void TargetFolder::Sync() const {
  // Some file systems cannot flush a folder and say EINVAL; their renames are as safe as they get.
  if (::fsync(Fd()) != 0 && errno != EINVAL) throw SystemFailure("flush the folder " + Printable(path_), errno);
}

}  // namespace apps
