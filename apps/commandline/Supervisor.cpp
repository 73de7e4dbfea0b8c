// Runs a verb on a worker thread and ends it on a signal or at the deadline.
#include "apps/commandline/Supervisor.h"

#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <thread>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Output.h"
#include "apps/commandline/Scratch.h"
#include "base/FileDescriptor.h"
#include "base/SignalPipe.h"
#include "platform/Sockets.h"

namespace apps {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

enum class Cause { kDone, kSignal, kDeadline };

// Milliseconds for poll, rounded up; -1 without a deadline.
int PollTime(std::optional<Clock::time_point> until) {
  if (!until) return -1;
  const auto left = std::chrono::ceil<milliseconds>(*until - Clock::now());
  constexpr milliseconds kLongest{1'000'000'000};
  return static_cast<int>(std::clamp(left, milliseconds(0), kLongest).count());
}

// The thread that does the work, and the descriptor that says when it has ended.
class Worker {
 public:
  explicit Worker(const std::function<ExitCode(const Stop&)>& work) {
    std::array<int, 2> ends{-1, -1};
    if (platform::Pipe(ends) != 0) throw SystemFailure("make a pipe", errno);
    done_.Reset(ends[0]);
    running_.Reset(ends[1]);
    thread_ = std::thread([this, &work] { Run(work); });
  }
  ~Worker() { thread_.join(); }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  int DoneDescriptor() const { return done_.Get(); }
  void AskToStop() { stop_.Request(); }
  bool HasEnded() const { return ended_.load(); }
  /// Valid when the worker has ended.
  ExitCode Result() const { return result_; }

 private:
  void Run(const std::function<ExitCode(const Stop&)>& work) {
    try {
      result_ = work(stop_);
    } catch (const Stopped&) {
      result_ = ExitCode::kInterrupted;
    } catch (const ReaderGone&) {
      result_ = ExitCode::kReaderGone;
    }
    ended_.store(true);
    running_.Reset();
  }

  base::FileDescriptor done_;     // hangs up when the other end is closed
  base::FileDescriptor running_;  // for as long as the thread works
  Stop stop_;
  ExitCode result_ = ExitCode::kFailed;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

// Calls `tick` about once a second.
Cause WaitForCause(const Worker& worker, int signals, std::optional<Clock::time_point> deadline,
                   const std::function<void(Clock::time_point)>& tick = {}) {
  std::array<pollfd, 2> watched{{{worker.DoneDescriptor(), POLLIN, 0}, {signals, POLLIN, 0}}};
  for (;;) {
    constexpr int kTick = 1000;
    const int left = PollTime(deadline);
    const int time = tick && (left < 0 || left > kTick) ? kTick : left;
    const int ready = ::poll(watched.data(), watched.size(), time);
    if (ready == 0 && tick) tick(Clock::now());
    if (worker.HasEnded()) return Cause::kDone;
    if (ready > 0 && (watched[1].revents & POLLIN) != 0) return Cause::kSignal;
    if (ready == 0 && deadline && Clock::now() >= *deadline) return Cause::kDeadline;
  }
}

std::string InWords(milliseconds time) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%g", static_cast<double>(time.count()) / 1000);
  return text.data();
}

}  // namespace

void TakeOverSignals() {
  const sigset_t set = base::SetOf(kEndingSignals);
  // Threads inherit the mask: only the thread that supervises ever receives these signals.
  ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
  // When the reader has gone, write fails and the tool reports it, instead of dying silently.
  std::signal(SIGPIPE, SIG_IGN);
}

namespace {

std::string WhyEnded(const Supervision& supervision, bool late) {
  const std::string done = supervision.soFar ? supervision.soFar() : "";
  const std::string why = late ? "Timed out after " + InWords(*supervision.timeout) + " s" : "Stopped";
  if (!done.empty()) return why + ": " + done + ".";
  return why + (late ? "; a longer --timeout gives the camera more time." : ". Everything finished so far is kept.");
}

}  // namespace

ExitCode Supervise(const std::function<ExitCode(const Stop&)>& work, const Supervision& supervision,
                   Reporter& reporter) {
  const base::SignalPipe signals(kEndingSignals);
  if (!signals) throw SystemFailure("watch for signals", errno);
  std::optional<Clock::time_point> deadline;
  if (supervision.timeout) deadline = Clock::now() + *supervision.timeout - supervision.spent;

  Worker worker(work);
  const base::SignalPipe::Listening listening(signals);  // not before the worker starts, which would inherit it
  std::function<void(Clock::time_point)> tick;
  if (reporter.Style().terminal) tick = [&reporter](Clock::time_point now) { reporter.Tick(now); };
  const Cause cause = WaitForCause(worker, signals.Descriptor(), deadline, tick);
  if (cause == Cause::kDone) return worker.Result();

  const bool late = cause == Cause::kDeadline;
  const ExitCode code = late ? ExitCode::kTimedOut : ExitCode::kInterrupted;
  worker.AskToStop();
  // A worker inside one long transfer cannot notice the request, and Ctrl-C must not have to wait for it.
  const bool done = WaitForCause(worker, -1, Clock::now() + supervision.grace) == Cause::kDone;
  const std::string sentence = WhyEnded(supervision, late);
  reporter.LastWord(sentence, code);
  if (supervision.atEnd) supervision.atEnd(code, sentence);
  if (done) return code;
  // The worker still runs and uses what destructors would free, so the process ends without them.
  RemoveScratchFiles();
  ::_exit(static_cast<int>(code));
}

}  // namespace apps
