#ifndef KELVA_BASE_ACCEPT_PAUSE_H_
#define KELVA_BASE_ACCEPT_PAUSE_H_

#include <algorithm>
#include <cerrno>
#include <chrono>

namespace base {

/// Keeps a loop that waits with poll from spinning while the system has no descriptor or memory for a connection: the
/// connection stays in the queue, so the listening socket stays readable. Leave the socket out of the wait until the
/// pause is over.
class AcceptPause {
 public:
  using Clock = std::chrono::steady_clock;

  /// Tells that accept has failed with this errno. Only a lack of resources starts a pause: every other failure takes
  /// the connection out of the queue.
  void NoteFailure(int error, Clock::time_point now = Clock::now()) {
    if (error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM) end_ = now + kPause;
  }
  /// What to wait for: the socket, or -1, which poll passes over, during a pause.
  int Awaited(int socket, Clock::time_point now = Clock::now()) const { return now < end_ ? -1 : socket; }
  /// How long to wait at most, when there is no other reason to wait for less than `otherMs` (-1: for ever).
  int TimeoutMs(int otherMs = -1, Clock::time_point now = Clock::now()) const {
    if (now >= end_) return otherMs;
    const auto left = static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(end_ - now).count());
    return otherMs < 0 ? left : std::min(left, otherMs);
  }

 private:
  static constexpr std::chrono::milliseconds kPause{100};

  Clock::time_point end_{};
};

}  // namespace base

#endif  // KELVA_BASE_ACCEPT_PAUSE_H_
