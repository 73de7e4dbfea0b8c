#ifndef KELVA_TESTS_KERNEL_CASES_SIGNAL_STORM_H_
#define KELVA_TESTS_KERNEL_CASES_SIGNAL_STORM_H_

#include <signal.h>
#include <time.h>

#include <stdexcept>

/// A signal to this process every millisecond while the object lives. Its handler restarts system calls, which is the kind
/// that makes a kernel send an interrupted command once more.
class SignalStorm {
 public:
  SignalStorm() {
    struct sigaction action {};
    action.sa_handler = [](int) { count_ = count_ + 1; };
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGUSR1, &action, nullptr);
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGUSR1;
    if (::timer_create(CLOCK_MONOTONIC, &event, &timer_) != 0) throw std::runtime_error("No timer.");
    const itimerspec everyMillisecond{{0, 1'000'000}, {0, 1'000'000}};
    ::timer_settime(timer_, 0, &everyMillisecond, nullptr);
  }
  ~SignalStorm() { ::timer_delete(timer_); }
  SignalStorm(const SignalStorm&) = delete;
  SignalStorm& operator=(const SignalStorm&) = delete;

  int delivered() const { return count_; }

 private:
  static inline volatile sig_atomic_t count_ = 0;
  timer_t timer_{};
};

#endif  // KELVA_TESTS_KERNEL_CASES_SIGNAL_STORM_H_
