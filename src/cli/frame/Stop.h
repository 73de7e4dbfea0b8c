#ifndef KELVA_CLI_FRAME_STOP_H_
#define KELVA_CLI_FRAME_STOP_H_

#include <atomic>

namespace kelva {

/// Thrown in the worker when it has been asked to stop. No std::exception, so that nothing mistakes it for a failure.
struct Stopped {};

/// The request to stop, made by one thread and noticed by the worker between two steps of its work.
class Stop {
 public:
  void Request() { requested_.store(true, std::memory_order_relaxed); }
  bool Requested() const { return requested_.load(std::memory_order_relaxed); }
  /// Throws Stopped when it was requested.
  void Check() const {
    if (Requested()) throw Stopped();
  }

 private:
  std::atomic<bool> requested_ = false;
};

}  // namespace kelva

#endif  // KELVA_CLI_FRAME_STOP_H_
