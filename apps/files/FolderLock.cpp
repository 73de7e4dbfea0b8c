// Keeps a second sync out of a folder.
#include "apps/files/FolderLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Output.h"
#include "apps/commandline/Printable.h"
#include "apps/files/FolderWriters.h"

namespace apps {
namespace {

constexpr int kFlags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;

base::FileDescriptor OpenOrMake(const TargetFolder& folder) {
  base::FileDescriptor made(::openat(folder.Fd(), kLockName.data(), kFlags | O_CREAT | O_EXCL, kOwnerOnly));
  if (made) LimitToWriters(folder.Fd(), kLockName.data());
  if (made || errno != EEXIST) return made;
  return base::FileDescriptor(::openat(folder.Fd(), kLockName.data(), kFlags));
}

bool IsPlainFile(int file) {
  struct stat status {};
  return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

bool IsPlainFile(int folder, const std::string& name) {
  struct stat status {};
  return ::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

void LimitToWriters(const TargetFolder& folder, const std::string& name) {
  // By its name: to open and close the file here would give up the locks that SQLite holds on it.
  if (IsPlainFile(folder.Fd(), name)) LimitToWriters(folder.Fd(), name.c_str());
}

FolderLock::FolderLock(const TargetFolder& folder) : file_(OpenOrMake(folder)) {
  const std::string path = Printable(folder.PathOf(std::string(kLockName)));
  if (!file_) throw SystemFailure("open the lock file " + path, errno);
  if (!IsPlainFile(file_.Get())) throw Failure(ExitCode::kFailed, path + " is not a plain file; move it away.");
  // A file system without locks has no other answer than to go on.
  if (::flock(file_.Get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return;
  throw Failure(ExitCode::kBusy,
                "Another `kelva sync` is at work in " + Printable(folder.Path()) + "; wait until it has finished.");
}

}  // namespace apps
