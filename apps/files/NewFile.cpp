// Writes a file under a temporary name and names it only when it is whole.
#include "apps/files/NewFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Output.h"
#include "apps/commandline/Printable.h"
#include "base/Hex.h"
#include "base/SendAll.h"

namespace apps {
namespace {

std::string RandomWord() {
  std::array<char, 8> bytes{};
  if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw SystemFailure("draw a random file name", errno);
  }
  return base::Hex(std::string_view(bytes.data(), bytes.size()));
}

// Random once for each process, then counted. The process number keeps forked processes apart.
std::string TemporaryName() {
  static const std::string word = RandomWord();
  static std::atomic<unsigned long long> count = 0;
  return std::string(kTemporaryStart) + word + "-" + std::to_string(::getpid()) + "-" + std::to_string(++count) +
         std::string(kTemporaryEnd);
}

// For file systems without RENAME_NOREPLACE: a second name that fails when it exists, then the first one goes.
int LinkAndUnlink(int folder, const char* from, const char* to) {
  if (::linkat(folder, from, folder, to, 0) != 0) return errno;
  return ::unlinkat(folder, from, 0) == 0 ? 0 : errno;
}

// Last resort where there are no hard links either (some network and memory-card file systems).
int LookAndRename(int folder, const char* from, const char* to) {
  if (::faccessat(folder, to, F_OK, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
  return ::renameat(folder, from, folder, to) == 0 ? 0 : errno;
}

// 0 or errno; EEXIST when the name is taken.
int RenameWithoutReplacing(int folder, const char* from, const char* to) {
  if (::renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  const int error = LinkAndUnlink(folder, from, to);
  if (error != EPERM && error != EOPNOTSUPP && error != ENOSYS) return error;
  return LookAndRename(folder, from, to);
}

// Locks a newborn file, so that RemoveLeftovers knows that it is in use. A sweep may look at the file before that: it then
// holds the lock, or has unlinked the file already. A file system without locks is never swept.
bool Claim(int file) {
  if (::flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
  struct stat status {};
  return ::fstat(file, &status) != 0 || status.st_nlink > 0;
}

}  // namespace

NewFile::NewFile(const TargetFolder& folder) : folder_(folder) {
  constexpr int kAttempts = 100;
  for (int i = 0; i < kAttempts; ++i) {
    // A new name each time: the sweep that took the last one may unlink that name only now.
    temporary_ = TemporaryName();
    record_.emplace(folder.Fd(), temporary_);
    file_ = base::FileDescriptor(OpenBeneath(folder.Fd(), temporary_, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file_) throw SystemFailure("create a file in " + Printable(folder.Path()), errno);
    if (Claim(file_.Get())) return;
    ::unlinkat(folder.Fd(), temporary_.c_str(), 0);
  }
  throw SystemFailure("lock a file in " + Printable(folder.Path()), EBUSY);
}

NewFile::~NewFile() {
  if (!named_) ::unlinkat(folder_.Fd(), temporary_.c_str(), 0);
}

void NewFile::Write(std::span<const char> bytes) {
  const int error = base::WriteAll(file_.Get(), std::string_view(bytes.data(), bytes.size()));
  if (error != 0) throw SystemFailure("write into " + Printable(folder_.Path()), error);
}

void NewFile::BeginFlush() noexcept {
  ::sync_file_range(file_.Get(), 0, 0, SYNC_FILE_RANGE_WRITE);
}

void NewFile::Flush() {
  if (::fdatasync(file_.Get()) != 0) throw SystemFailure("flush a file in " + Printable(folder_.Path()), errno);
}

bool NewFile::TakeName(const std::string& name) {
  const int error = RenameWithoutReplacing(folder_.Fd(), temporary_.c_str(), name.c_str());
  if (error == EEXIST) return false;
  if (error != 0) throw SystemFailure("name a file " + Printable(folder_.PathOf(name)), error);
  Named();
  return true;
}

void NewFile::ReplaceName(const std::string& name) {
  if (::renameat(folder_.Fd(), temporary_.c_str(), folder_.Fd(), name.c_str()) != 0) {
    throw SystemFailure("name a file " + Printable(folder_.PathOf(name)), errno);
  }
  Named();
}

void NewFile::Named() {
  named_ = true;
  record_->Forget();
}

}  // namespace apps
