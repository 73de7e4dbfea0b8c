#ifndef KELVA_BASE_SIGNAL_PIPE_H_
#define KELVA_BASE_SIGNAL_PIPE_H_

#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "base/FileDescriptor.h"
#include "platform/Sockets.h"

namespace base {

/// The signals of a list.
inline sigset_t SetOf(std::span<const int> signals) {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : signals) sigaddset(&set, signal);
  return set;
}

/// Signals as numbers that come out of a pipe, so that poll can wait for them beside other descriptors. One at a time in a
/// process, made and destroyed while all threads block the signals: they come in on a thread that listens, and what came
/// before waits for it.
class SignalPipe {
 public:
  /// False when the system has no descriptor left; errno says so.
  explicit SignalPipe(std::span<const int> signals) : set_(SetOf(signals)) {
    std::array<int, 2> ends{-1, -1};
    if (platform::Pipe(ends) != 0) return;
    read_.Reset(ends[0]);
    write_.Reset(ends[1]);
    for (const int end : ends) platform::SetNonBlocking(end);
    whereTo = write_.Get();
    struct sigaction action {};
    action.sa_handler = Handle;
    action.sa_mask = set_;
    action.sa_flags = SA_RESTART;
    for (const int signal : signals) {
      struct sigaction before {};
      if (::sigaction(signal, &action, &before) == 0) before_.emplace_back(signal, before);
    }
  }
  ~SignalPipe() {
    for (const auto& [signal, action] : before_) ::sigaction(signal, &action, nullptr);
    if (read_) whereTo = -1;
  }
  SignalPipe(const SignalPipe&) = delete;
  SignalPipe& operator=(const SignalPipe&) = delete;

  explicit operator bool() const { return static_cast<bool>(read_); }
  /// Readable while Next has a signal to give.
  int Descriptor() const { return read_.Get(); }
  /// The next signal that came; 0 when there is none.
  int Next() const {
    unsigned char signal = 0;
    return ::read(read_.Get(), &signal, 1) == 1 ? signal : 0;
  }

  /// While this lives, the signals come in on the calling thread. Threads that it starts meanwhile inherit that.
  class Listening {
   public:
    explicit Listening(const SignalPipe& pipe) { ::pthread_sigmask(SIG_UNBLOCK, &pipe.set_, &before_); }
    ~Listening() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;

   private:
    sigset_t before_{};
  };

 private:
  static void Handle(int signal) {
    const int error = errno;
    const auto byte = static_cast<unsigned char>(signal);
    // A full pipe has signals enough to read.
    [[maybe_unused]] const ssize_t written = ::write(whereTo, &byte, 1);
    errno = error;
  }

  // Lock-free, as a handler needs it.
  inline static std::atomic<int> whereTo = -1;

  const sigset_t set_;
  FileDescriptor read_;
  FileDescriptor write_;
  std::vector<std::pair<int, struct sigaction>> before_;
};

}  // namespace base

#endif  // KELVA_BASE_SIGNAL_PIPE_H_
