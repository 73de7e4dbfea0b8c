#ifndef KELVA_BASE_TESTING_CROWD_H_
#define KELVA_BASE_TESTING_CROWD_H_

#include <atomic>
#include <functional>
#include <latch>
#include <thread>
#include <vector>

namespace base {

/// Threads that do their work over and over at the same time, for tests that look for data races: ThreadSanitizer notices
/// a lock that is missing when the threads touch what it guards.
class Crowd {
 public:
  using Work = std::function<void()>;

  /// Each member gets a thread of its own, which starts with the others and does its work `rounds` times.
  Crowd(int rounds, const std::vector<Work>& members)
      : together_(static_cast<std::ptrdiff_t>(members.size())), busy_(static_cast<int>(members.size())) {
    for (const Work& work : members) threads_.emplace_back([this, rounds, work] { Do(rounds, work); });
  }
  ~Crowd() {
    for (std::thread& thread : threads_) thread.join();
  }
  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;

  /// Whether a member still works, for a caller that takes part until the others have done.
  bool IsBusy() const { return busy_ != 0; }

 private:
  void Do(int rounds, const Work& work) {
    together_.arrive_and_wait();
    for (int round = 0; round < rounds; ++round) work();
    --busy_;
  }

  std::latch together_;
  std::atomic<int> busy_;
  std::vector<std::thread> threads_;
};

}  // namespace base

#endif  // KELVA_BASE_TESTING_CROWD_H_
