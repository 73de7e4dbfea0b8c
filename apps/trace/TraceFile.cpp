// Opens a trace without touching what is not a trace, and adds lines to it.
#include "apps/trace/TraceFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <exception>
#include <thread>
#include <utility>

#include "apps/commandline/Aborts.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "base/SendAll.h"

namespace apps {
namespace {

constexpr std::size_t kMostPending = 65536;
constexpr std::chrono::milliseconds kLongestPending(100);
constexpr int kPatienceMs = 100;

// The traces of this process that an abort finds; a program has one, and a survey one more.
std::array<std::atomic<TraceFile*>, 4> openTraces;

Failure Refusal(const std::string& path, const std::string& why) {
  return {ExitCode::kFailed, "There is a " + Printable(path) + " already, and " + why +
                                 "; it was kept. Choose another name for the trace."};
}

bool StartsAsATrace(int file) {
  std::array<char, kTraceStart.size()> start{};
  const ssize_t count = ::pread(file, start.data(), start.size(), 0);
  return count == static_cast<ssize_t>(start.size()) && std::string_view(start.data(), start.size()) == kTraceStart;
}

// Returns the size of the file.
off_t MakeSureItIsOurs(int file, const std::string& path) {
  struct stat status {};
  if (::fstat(file, &status) != 0) throw SystemFailure("look at " + Printable(path), errno);
  if (!S_ISREG(status.st_mode)) throw Refusal(path, "it is not a regular file");
  if (status.st_uid != ::geteuid()) throw Refusal(path, "it belongs to somebody else");
  if (status.st_nlink > 1) throw Refusal(path, "it has another name too");
  if (status.st_size > 0 && !StartsAsATrace(file)) throw Refusal(path, "it is not a trace");
  if (::fchmod(file, S_IRUSR | S_IWUSR) != 0) throw SystemFailure("make " + Printable(path) + " private", errno);
  return status.st_size;
}

// Whoever wrote it was killed in the middle of a write, or the disk was full.
bool EndsInTheMiddleOfALine(int file, off_t size) {
  char last = '\n';
  return size > 0 && ::pread(file, &last, 1, size - 1) == 1 && last != '\n';
}

}  // namespace

TraceFile::TraceFile(const std::string& path, std::function<void(const std::string&)> complain)
    : path_(path), complain_(std::move(complain)) {
  if (path.empty()) throw Failure(ExitCode::kUsage, "--trace needs the name of a file.");
  // Not blocking: a pipe of this name is refused below, and must not keep the tool waiting until then.
  constexpr int kFlags = O_RDWR | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
  file_.Reset(::open(path.c_str(), kFlags, S_IRUSR | S_IWUSR));
  if (!file_ && errno == ELOOP) throw Refusal(path, "it is a symbolic link");
  if (!file_) throw SystemFailure("write the trace " + Printable(path), errno);
  const off_t size = MakeSureItIsOurs(file_.Get(), path);
  if (EndsInTheMiddleOfALine(file_.Get(), size)) pending_ = "\n";
  begin_ = static_cast<std::size_t>(size) + pending_.size();
  for (std::atomic<TraceFile*>& place : openTraces) {
    TraceFile* none = nullptr;
    if (place.compare_exchange_strong(none, this)) break;
  }
  AtAbort(FlushAllAtAbort);
}

TraceFile::~TraceFile() {
  Flush();
  for (std::atomic<TraceFile*>& place : openTraces) {
    TraceFile* self = this;
    if (place.compare_exchange_strong(self, nullptr)) return;
  }
}

void TraceFile::Add(std::string_view line, std::chrono::steady_clock::time_point now) noexcept {
  const std::scoped_lock lock(mutex_);
  if (!Keep(line)) return;
  if (pending_.size() < kMostPending && now - written_ < kLongestPending) return;
  Write();
}

void TraceFile::AddAtEnd(std::string_view lines) noexcept {
  std::unique_lock lock(mutex_, std::try_to_lock);
  for (int tries = 0; !lock && tries < kPatienceMs; ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    static_cast<void>(lock.try_lock());
  }
  if (lock && Keep(lines)) Write();
}

// False when nothing more can be added.
bool TraceFile::Keep(std::string_view lines) noexcept {
  if (failed_) return false;
  try {
    pending_ += lines;
    return true;
  } catch (const std::exception&) {  // no memory
    End(ENOMEM);
    return false;
  }
}

void TraceFile::Flush() noexcept {
  const std::scoped_lock lock(mutex_);
  Write();
}

void TraceFile::Write() noexcept {
  const int error = base::WriteAll(file_.Get(), pending_);
  pending_.clear();
  written_ = std::chrono::steady_clock::now();
  if (error != 0) End(error);
}

void TraceFile::End(int error) noexcept {
  if (!std::exchange(failed_, true)) Complain(error);
}

void TraceFile::FlushAllAtAbort() noexcept {
  for (const std::atomic<TraceFile*>& place : openTraces) {
    TraceFile* file = place;
    // Held by another thread, which may have ended in the middle: then its lines are lost.
    if (file == nullptr || !file->mutex_.try_lock()) continue;
    base::WriteAll(file->file_.Get(), file->pending_);
    file->pending_.clear();
    file->mutex_.unlock();
  }
}

void TraceFile::Complain(int error) noexcept {
  try {
    complain_("The trace " + Printable(path_) + " ends early, because it cannot be written: " + std::strerror(error) +
              ". The command itself goes on.");
  } catch (const std::exception&) {
    // No memory for the sentence; the command itself goes on all the same.
  }
}

std::string TraceFile::Contents(std::size_t most) {
  Flush();
  struct stat status {};
  if (::fstat(file_.Get(), &status) != 0 || status.st_size <= 0) return "";
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size <= begin_) return "";
  const std::size_t begin = std::max(begin_, size > most ? size - most : 0);
  std::string text(size - begin, '\0');
  std::size_t filled = 0;
  while (filled < text.size()) {
    const ssize_t count =
        ::pread(file_.Get(), text.data() + filled, text.size() - filled, static_cast<off_t>(begin + filled));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    filled += static_cast<std::size_t>(count);
  }
  text.resize(filled);
  if (begin == begin_) return text;
  const std::size_t end = text.find('\n');
  return end == std::string::npos ? "" : text.substr(end + 1);
}

}  // namespace apps
