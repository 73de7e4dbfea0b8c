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

namespace apps {
namespace {

constexpr int kFlags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;

/// The file's permissions: reading and writing for each class of users that may write into the folder.
mode_t ModeFor(const struct stat& folder) {
  mode_t mode = kOwnerOnly;
  if ((folder.st_mode & S_IWGRP) != 0) mode |= S_IRGRP | S_IWGRP;
  if ((folder.st_mode & S_IWOTH) != 0) mode |= S_IROTH | S_IWOTH;
  return mode;
}

/// Lets others who may write into the folder use a lock file that was just made. Where that is refused (a file system
/// without permissions) they get to know when they open it.
void Share(int file, const struct stat& folder) {
  const mode_t mode = ModeFor(folder);
  if (mode == kOwnerOnly) return;
  const bool shared = ::fchown(file, static_cast<uid_t>(-1), folder.st_gid) == 0 && ::fchmod(file, mode) == 0;
  static_cast<void>(shared);
}

base::FileDescriptor OpenOrMake(const TargetFolder& folder) {
  struct stat status {};
  if (::fstat(folder.Fd(), &status) != 0) throw SystemFailure("look at " + Printable(folder.Path()), errno);
  base::FileDescriptor made(::openat(folder.Fd(), kLockName.data(), kFlags | O_CREAT | O_EXCL, kOwnerOnly));
  if (made) Share(made.Get(), status);
  if (made || errno != EEXIST) return made;
  return base::FileDescriptor(::openat(folder.Fd(), kLockName.data(), kFlags));
}

bool IsPlainFile(int file) {
  struct stat status {};
  return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

void LimitToWriters(const TargetFolder& folder, const std::string& name) {
  struct stat status {};
  if (::fstat(folder.Fd(), &status) != 0) return;
  // By name: to open and close a file here would give up the locks that SQLite holds on it.
  const mode_t mode = ModeFor(status);
  const bool shared = mode == kOwnerOnly || ::fchownat(folder.Fd(), name.c_str(), static_cast<uid_t>(-1), status.st_gid,
                                                       AT_SYMLINK_NOFOLLOW) == 0;
  const bool limited = ::fchmodat(folder.Fd(), name.c_str(), shared ? mode : kOwnerOnly, AT_SYMLINK_NOFOLLOW) == 0;
  static_cast<void>(limited);
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
