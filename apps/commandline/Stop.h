#ifndef KELVA_APPS_COMMANDLINE_STOP_H_
#define KELVA_APPS_COMMANDLINE_STOP_H_

#include <atomic>
#include <functional>
#include <mutex>
#include <utility>

namespace apps {

/// Thrown in the worker when it has been asked to stop. Not a std::exception, so that no handler mistakes it for a
/// failure.
struct Stopped {};

/// The request to stop, made by one thread and noticed by the worker between two steps of its work.
class Stop {
 public:
  void Request() {
    requested_.store(true, std::memory_order_relaxed);
    const std::scoped_lock lock(mutex_);
    if (wakeUp_) wakeUp_();
  }
  bool Requested() const { return requested_.load(std::memory_order_relaxed); }
  /// Throws Stopped when it was requested.
  void Check() const {
    if (Requested()) throw Stopped();
  }

  /// While this lives, a request also calls a function, on the requesting thread: for a worker that sleeps. The worker
  /// looks at the request once more after it has made this.
  class WakeUp {
   public:
    WakeUp(const Stop& stop, std::function<void()> wakeUp) : stop_(stop) { Set(std::move(wakeUp)); }
    ~WakeUp() { Set({}); }
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

   private:
    void Set(std::function<void()> wakeUp) {
      const std::scoped_lock lock(stop_.mutex_);
      stop_.wakeUp_ = std::move(wakeUp);
    }
    const Stop& stop_;
  };

 private:
  std::atomic<bool> requested_ = false;
  mutable std::mutex mutex_;
  mutable std::function<void()> wakeUp_;
};

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_STOP_H_
