// Writes a file under a temporary name and names it only when it is whole.
#include "apps/files/NewFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <utility>
#include <vector>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Output.h"
#include "apps/commandline/Printable.h"
#include "apps/files/FileCalls.h"
#include "base/Hex.h"

namespace apps {
namespace {

std::string RandomWord() {
  std::array<char, 8> bytes{};
  if (::getentropy(bytes.data(), bytes.size()) != 0) throw SystemFailure("draw a random file name", errno);
  return base::Hex(std::string_view(bytes.data(), bytes.size()));
}

// Random once for each process, then counted. The process number keeps forked processes apart.
std::string NextTemporaryName() {
  static const std::string word = RandomWord();
  static std::atomic<unsigned long long> count = 0;
  return std::string(kTemporaryStart) + word + "-" + std::to_string(::getpid()) + "-" + std::to_string(++count) +
         std::string(kTemporaryEnd);
}

}  // namespace

NewFile::NewFile(const TargetFolder& folder, Readers readers) : folder_(folder), readers_(readers) {
  constexpr int kAttempts = 100;
  for (int i = 0; i < kAttempts; ++i) {
    // A new name each time: the sweep that took the last one may unlink that name only now.
    temporary_ = NextTemporaryName();
    record_.emplace(folder.Fd(), temporary_);
    file_ = base::FileDescriptor(FileCalls::Current().Create(folder.Fd(), temporary_));
    if (!file_ && errno != EINTR) throw SystemFailure("create a file in " + Printable(folder.Path()), errno);
    if (file_ && Claim()) return;
    ::unlinkat(folder.Fd(), temporary_.c_str(), 0);
  }
  throw SystemFailure("lock a file in " + Printable(folder.Path()), EBUSY);
}

NewFile::NewFile(const TargetFolder& folder, std::string temporary, base::FileDescriptor file)
    : folder_(folder),
      readers_(Readers::kUsual),
      temporary_(std::move(temporary)),
      file_(std::move(file)),
      kept_(true) {}

std::unique_ptr<NewFile> NewFile::TakeUp(const TargetFolder& folder, const std::string& temporary) {
  base::FileDescriptor file(OpenBeneath(folder.Fd(), temporary, O_RDWR | O_NONBLOCK | O_APPEND));
  struct stat status {};
  if (!file || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
  // Where there are no locks, two programs would write into one file.
  if (::flock(file.Get(), LOCK_EX | LOCK_NB) != 0 || !folder.Has(temporary)) return nullptr;
  return std::unique_ptr<NewFile>(new NewFile(folder, temporary, std::move(file)));
}

NewFile::~NewFile() {
  if (!named_ && !kept_) ::unlinkat(folder_.Fd(), temporary_.c_str(), 0);
}

// Locks a newborn file, so that RemoveLeftovers knows that it is in use. A sweep may look at the file before that: it then
// holds the lock, or has taken the name away already. A file system without locks is never swept.
bool NewFile::Claim() const {
  if (::flock(file_.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
  // The name and not the number of links: some file systems go on to count a link of a file that has lost its name.
  return folder_.Has(temporary_);
}

void NewFile::Write(std::span<const char> bytes) {
  std::string_view rest(bytes.data(), bytes.size());
  while (!rest.empty()) {
    const ssize_t written = UntilDone([&] { return FileCalls::Current().Write(file_.Get(), rest); });
    if (written < 0) throw SystemFailure("write into " + Printable(folder_.Path()), errno);
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
  constexpr std::size_t kFlushEach = std::size_t{8} << 20;
  unflushed_ += bytes.size();
  if (unflushed_ >= kFlushEach) BeginFlush();
}

std::size_t NewFile::ReadAt(unsigned long long offset, std::span<char> into) const {
  std::size_t done = 0;
  while (done < into.size()) {
    const ssize_t count = UntilDone([&] {
      return ::pread(file_.Get(), into.data() + done, into.size() - done, static_cast<off_t>(offset + done));
    });
    if (count < 0) throw SystemFailure("read a file in " + Printable(folder_.Path()), errno);
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  return done;
}

bool NewFile::HoldsAt(unsigned long long offset, std::span<const char> bytes) const {
  std::vector<char> held(bytes.size());
  return ReadAt(offset, held) == held.size() && std::equal(held.begin(), held.end(), bytes.begin());
}

void NewFile::ReadBack(const std::function<void(std::span<const char>)>& take) const {
  std::vector<char> piece(std::size_t{256} << 10);
  unsigned long long at = 0;
  while (const std::size_t count = ReadAt(at, piece)) {
    take(std::span(piece).first(count));
    at += count;
  }
}

unsigned long long NewFile::Size() const {
  struct stat status {};
  if (::fstat(file_.Get(), &status) != 0) throw SystemFailure("look at a file in " + Printable(folder_.Path()), errno);
  return static_cast<unsigned long long>(status.st_size);
}

void NewFile::Keep() {
  kept_ = true;
  if (record_) record_->Forget();
}

void NewFile::SetTime(std::time_t changed) {
  if (UntilDone([&] { return FileCalls::Current().SetTime(file_.Get(), changed); }) == 0) return;
  if (errno == EPERM || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP) return;
  throw SystemFailure("set the time of a file in " + Printable(folder_.Path()), errno);
}

void NewFile::BeginFlush() noexcept {
  unflushed_ = 0;
  FileCalls::Current().BeginFlush(file_.Get());
}

void NewFile::Flush() {
  if (UntilDone([this] { return FileCalls::Current().Flush(file_.Get()); }) == 0) return;
  throw SystemFailure("flush a file in " + Printable(folder_.Path()), errno);
}

bool NewFile::TakeName(const std::string& name) {
  return Rename(name, false);
}

void NewFile::ReplaceName(const std::string& name) {
  Rename(name, true);
}

bool NewFile::Rename(const std::string& name, bool replace) {
  FileCalls& calls = FileCalls::Current();
  if (readers_ == Readers::kUsual) {
    // A file system without permissions refuses, and has nothing to change.
    [[maybe_unused]] const int changed = ::fchmod(file_.Get(), folder_.UsualMode());
  }
  const int result = UntilDone([&] { return calls.Rename(folder_.Fd(), temporary_, name, replace); });
  if (result != 0 && errno == EEXIST && !replace) return false;
  if (result != 0) throw SystemFailure("name a file " + Printable(folder_.PathOf(name)), errno);
  named_ = true;
  return true;
}

}  // namespace apps
