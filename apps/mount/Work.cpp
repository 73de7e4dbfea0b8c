// The line of requests in front of the camera's thread.
#include "apps/mount/Work.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace apps {

void Work::Put(Job job) {
  const std::scoped_lock lock(mutex_);
  jobs_.push_back(std::move(job));
  changed_.notify_all();
}

std::optional<Job> Work::TakeOf(std::uint64_t file) {
  const std::scoped_lock lock(mutex_);
  return Earliest(file);
}

std::optional<Job> Work::Take() {
  const std::scoped_lock lock(mutex_);
  nudged_ = false;
  if (jobs_.empty()) return std::nullopt;
  if (jobs_.front().file != 0) return Earliest(jobs_.front().file);
  Job job = std::move(jobs_.front());
  jobs_.pop_front();
  return job;
}

std::optional<Job> Work::Earliest(std::uint64_t file) {
  auto next = jobs_.end();
  for (auto at = jobs_.begin(); at != jobs_.end(); ++at) {
    if (at->file == file && (next == jobs_.end() || at->offset < next->offset)) next = at;
  }
  if (next == jobs_.end()) return std::nullopt;
  Job job = std::move(*next);
  jobs_.erase(next);
  return job;
}

std::vector<Job> Work::TakeAll() {
  const std::scoped_lock lock(mutex_);
  std::vector<Job> all(std::make_move_iterator(jobs_.begin()), std::make_move_iterator(jobs_.end()));
  jobs_.clear();
  return all;
}

bool Work::HasOther(std::uint64_t file) const {
  const std::scoped_lock lock(mutex_);
  return std::any_of(jobs_.begin(), jobs_.end(), [file](const Job& job) { return job.file != file; });
}

void Work::Wait() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return ended_ || !jobs_.empty(); });
}

bool Work::WaitFor(std::chrono::milliseconds time) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, time, [this] { return ended_ || nudged_ || !jobs_.empty(); });
}

void Work::End() {
  const std::scoped_lock lock(mutex_);
  ended_ = true;
  changed_.notify_all();
}

bool Work::HasEnded() const {
  const std::scoped_lock lock(mutex_);
  return ended_;
}

void Work::Nudge() {
  const std::scoped_lock lock(mutex_);
  nudged_ = true;
  changed_.notify_all();
}

}  // namespace apps
