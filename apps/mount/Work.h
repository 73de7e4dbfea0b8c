#ifndef KELVA_APPS_MOUNT_WORK_H_
#define KELVA_APPS_MOUNT_WORK_H_

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace apps {

/// What the camera's thread is asked to do for one request of the kernel. Neither function throws but for `run`, whose
/// exception is handed to `fail` as a number of errno.
struct Job {
  std::uint64_t file = 0;  ///< whose bytes are asked for; 0 for another request
  std::uint64_t offset = 0;
  std::function<void()> run;
  std::function<void(int error)> fail;
};

/// The line of requests in front of the camera's thread. Any thread.
class Work {
 public:
  void Put(Job job);
  /// The job that asks for the earliest part of this file.
  std::optional<Job> TakeOf(std::uint64_t file);
  /// The oldest job; of its file the earliest part, also when the kernel asks in another order.
  std::optional<Job> Take();
  std::vector<Job> TakeAll();
  /// Whether a job waits that is not of this file.
  bool HasOther(std::uint64_t file) const;
  /// Waits until there is a job, or the end.
  void Wait();
  /// As Wait, also for a nudge. False after `time`.
  bool WaitFor(std::chrono::milliseconds time);
  /// Wakes whoever waits, also later.
  void End();
  bool HasEnded() const;
  /// Makes WaitFor return once without a job.
  void Nudge();

 private:
  std::optional<Job> Earliest(std::uint64_t file);

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Job> jobs_;
  bool ended_ = false;
  bool nudged_ = false;
};

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_WORK_H_
