// The thread of one camera, and the queue through which its replies reach the loop.
#include "vcam/server/Worker.h"

#include <stdexcept>
#include <system_error>
#include <utility>

namespace vcam::server {

CompletionQueue::CompletionQueue() try {
} catch (const std::system_error&) {
  throw std::runtime_error("Cannot make a descriptor for the bus; close other programs and try again.");
}

void CompletionQueue::Put(Completion completion) {
  const std::lock_guard lock(mutex_);
  // The signal for the first one stands until all are taken.
  if (completions_.empty()) wake_.Signal();
  completions_.push_back(std::move(completion));
}

std::vector<Completion> CompletionQueue::TakeAll() {
  const std::lock_guard lock(mutex_);
  wake_.Clear();
  return std::exchange(completions_, {});
}

Worker::Worker(std::shared_ptr<VirtualCamera> camera, std::shared_ptr<CompletionQueue> completions)
    : camera_(std::move(camera)), completions_(std::move(completions)), thread_([this] { Run(); }) {}

Worker::~Worker() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  // The thread needs the lock to see this, so it is joined outside of it.
  wake_.notify_all();
  thread_.join();
}

void Worker::Put(Job job) {
  {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
  }
  wake_.notify_all();
}

bool Worker::Idle() {
  const std::lock_guard lock(mutex_);
  return jobs_.empty() && !running_;
}

void Worker::Run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    wake_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
    if (stopping_) return;
    Job job = std::move(jobs_.front());
    jobs_.pop_front();
    // Set before the lock is released: Idle must not take this moment for the end of all work.
    running_ = true;
    lock.unlock();
    job.command.data = job.data;
    // Without the lock, because a command may take long and the loop must still be able to add jobs.
    completions_->Put({job.peer, job.tag, job.camera, camera_->Execute(job.command)});
    lock.lock();
    running_ = false;
  }
}

}  // namespace vcam::server
