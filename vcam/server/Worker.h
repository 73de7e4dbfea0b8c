#ifndef KELVA_VCAM_SERVER_WORKER_H_
#define KELVA_VCAM_SERVER_WORKER_H_

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "base/Bytes.h"
#include "base/WakeUp.h"
#include "vcam/camera/VirtualCamera.h"

namespace vcam::server {

using PeerId = std::uint64_t;

/// A command on its way to a camera, with its own copy of the data.
struct Job {
  PeerId peer = 0;
  std::uint32_t tag = 0;
  std::uint32_t camera = 0;
  wire::Command command;
  base::Bytes data;
};

/// A command that the camera has run.
struct Completion {
  PeerId peer = 0;
  std::uint32_t tag = 0;
  std::uint32_t camera = 0;
  wire::Reply reply;
};

/// Completions on their way back to the loop, which sleeps on the descriptor.
class CompletionQueue {
 public:
  /// Throws std::runtime_error when the system has no descriptor left.
  CompletionQueue();

  /// Readable while there is something to take.
  int Descriptor() const { return wake_.Descriptor(); }
  void Put(Completion completion);
  std::vector<Completion> TakeAll();

 private:
  std::mutex mutex_;
  std::vector<Completion> completions_;
  base::WakeUp wake_;
};

/// One thread that runs the commands of one camera, in order, so that a slow one holds up no other camera. Its destructor
/// waits for the command that is running and drops those that are not.
class Worker {
 public:
  Worker(std::shared_ptr<VirtualCamera> camera, std::shared_ptr<CompletionQueue> completions);
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  void Put(Job job);
  /// Whether no command is running or waiting.
  bool Idle();

 private:
  void Run();

  std::shared_ptr<VirtualCamera> camera_;
  std::shared_ptr<CompletionQueue> completions_;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<Job> jobs_;
  bool running_ = false;
  bool stopping_ = false;
  std::thread thread_;
};

}  // namespace vcam::server

#endif  // KELVA_VCAM_SERVER_WORKER_H_
