#ifndef KELVA_BASE_WAKE_UP_H_
#define KELVA_BASE_WAKE_UP_H_

#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "base/FileDescriptor.h"
#include "platform/Sockets.h"

namespace base {

/// A descriptor that any thread, and a signal handler, can make readable, so that a thread that waits with poll looks again.
class WakeUp {
 public:
  /// Throws std::system_error when the system has no descriptor left.
  WakeUp() {
    std::array<int, 2> ends{};
    if (platform::Pipe(ends) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    out_ = FileDescriptor(ends[0]);
    in_ = FileDescriptor(ends[1]);
    for (const int end : ends) platform::SetNonBlocking(end);
  }

  int Descriptor() const { return out_.Get(); }

  /// Makes it readable. Keeps errno.
  void Signal() noexcept {
    const int saved = errno;
    // Fails otherwise only when the pipe is full, and then it is readable.
    while (::write(in_.Get(), "", 1) < 0 && errno == EINTR) {
    }
    errno = saved;
  }

  /// Makes it unreadable again. Keeps errno.
  void Clear() noexcept {
    const int saved = errno;
    std::array<char, 64> signals;
    ssize_t count = 0;
    // A read that is not filled has taken all.
    do {
      count = ::read(out_.Get(), signals.data(), signals.size());
    } while (count == static_cast<ssize_t>(signals.size()) || (count < 0 && errno == EINTR));
    errno = saved;
  }

 private:
  FileDescriptor out_;
  FileDescriptor in_;
};

}  // namespace base

#endif  // KELVA_BASE_WAKE_UP_H_
