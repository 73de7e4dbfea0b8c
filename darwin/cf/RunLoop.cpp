// The run loop of a thread over poll(2), and the framework calls on run loops.

#include "darwin/cf/RunLoop.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <functional>
#include <iterator>
#include <limits>
#include <set>
#include <thread>

#include "base/FirstException.h"
#include "darwin/cf/String.h"

namespace darwin::cf {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kDefaultMode = "kCFRunLoopDefaultMode";
constexpr CFTimeInterval kLongestWait = 1.0e9;
constexpr int kLookMs = 100;

/// The moment so many seconds from now.
Clock::time_point After(CFTimeInterval seconds) {
  const std::chrono::duration<double> wait(std::clamp(seconds, 0.0, kLongestWait));
  return Clock::now() + std::chrono::duration_cast<Clock::duration>(wait);
}

/// Milliseconds until a moment, rounded up; 0 when it has come.
int MillisecondsUntil(Clock::time_point moment) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(moment - Clock::now()).count();
  return static_cast<int>(std::clamp<long long>(left, 0, std::numeric_limits<int>::max()));
}

/// The shorter of two waits; -1 is for ever.
int Sooner(int first, int second) {
  if (first < 0 || second < 0) return std::max(first, second);
  return std::min(first, second);
}

int ShortestTimeout(const std::vector<SourceRef>& sources) {
  int timeout = -1;
  for (const SourceRef& source : sources) timeout = Sooner(timeout, source->TimeoutMs());
  return timeout;
}

std::vector<int> DescriptorsOf(const std::vector<SourceRef>& sources) {
  std::vector<int> descriptors;
  for (const SourceRef& source : sources) source->AddDescriptors(descriptors);
  return descriptors;
}

/// A source that throws keeps no other from its turn.
bool PerformAll(const std::vector<SourceRef>& sources, base::FirstException& exceptions) {
  bool handled = false;
  for (const SourceRef& source : sources) {
    exceptions.Try([&] { handled = (source->IsValid() && source->Perform()) || handled; });
  }
  return handled;
}

/// Every thread's loop, so that a source can leave them all.
struct LoopList {
  std::mutex mutex;  // taken before the mutex of a loop
  std::set<RunLoop*> loops;
};

LoopList& AllLoops() {
  // Never destroyed: threads may outlive the end of main.
  static auto* list = new LoopList;
  return *list;
}

RunLoop& FromLoopRef(CFRunLoopRef ref) {
  return const_cast<RunLoop&>(static_cast<const RunLoop&>(FromRef(ref)));
}

}  // namespace

RunLoop::RunLoop() : Object(Type::kRunLoop, Lifetime::kImmortal) {
  const std::lock_guard lock(AllLoops().mutex);
  AllLoops().loops.insert(this);
}

RunLoop::~RunLoop() {
  const std::lock_guard lock(AllLoops().mutex);
  AllLoops().loops.erase(this);
}

RunLoop& RunLoop::Current() {
  static thread_local RunLoop loop;
  return loop;
}

void RunLoop::Add(RunLoopSource& source, const std::string& mode) {
  const std::lock_guard lock(mutex_);
  if (!source.IsValid() || Has(source, mode)) return;
  members_.push_back({mode, SourceRef(source)});
  wakeUp_.Signal();
}

void RunLoop::Remove(const RunLoopSource& source, const std::string& mode) {
  RemoveIf([&](const Member& member) { return member.source.Get() == &source && member.mode == mode; });
}

bool RunLoop::Contains(const RunLoopSource& source, const std::string& mode) {
  const std::lock_guard lock(mutex_);
  return Has(source, mode);
}

bool RunLoop::Has(const RunLoopSource& source, const std::string& mode) const {
  return std::any_of(members_.begin(), members_.end(),
                     [&](const Member& member) { return member.source.Get() == &source && member.mode == mode; });
}

void RunLoop::RemoveEverywhere(const RunLoopSource& source) {
  const std::lock_guard lock(AllLoops().mutex);
  for (RunLoop* loop : AllLoops().loops) {
    loop->RemoveIf([&](const Member& member) { return member.source.Get() == &source; });
  }
}

template <class Predicate>
void RunLoop::RemoveIf(Predicate predicate) {
  std::vector<Member> removed;  // released after the lock
  const std::lock_guard lock(mutex_);
  const auto kept = std::stable_partition(members_.begin(), members_.end(), std::not_fn(predicate));
  std::move(kept, members_.end(), std::back_inserter(removed));
  members_.erase(kept, members_.end());
  wakeUp_.Signal();
}

/// One call of Run. Runs nest when a callback runs the loop; a stop ends the innermost run alone.
struct RunLoop::InProgress {
  explicit InProgress(RunLoop& runLoop) : loop(runLoop) {
    const std::lock_guard lock(loop.mutex_);
    outer = std::exchange(loop.running_, this);
  }
  ~InProgress() {
    const std::lock_guard lock(loop.mutex_);
    loop.running_ = outer;
  }
  InProgress(const InProgress&) = delete;
  InProgress& operator=(const InProgress&) = delete;

  RunLoop& loop;
  InProgress* outer;
  std::atomic<bool> stopped{false};
};

CFRunLoopRunResult RunLoop::Run(const std::string& mode, CFTimeInterval seconds, bool returnAfterSourceHandled) {
  const Clock::time_point deadline = After(seconds);
  const InProgress run(*this);
  for (;;) {
    // Cleared before the look at the sources: what is signalled from here on ends the wait below.
    wakeUp_.Clear();
    // A copy with references: a source may add or remove sources, or itself, while it performs.
    const std::vector<SourceRef> sources = SourcesOf(mode);
    if (sources.empty()) return kCFRunLoopRunFinished;
    base::FirstException exceptions;
    const bool handled = !run.stopped && PerformAll(sources, exceptions);
    if (watch_ != nullptr) UpdateWatch();
    exceptions.Rethrow();
    if (run.stopped) return kCFRunLoopRunStopped;
    if (handled && returnAfterSourceHandled) return kCFRunLoopRunHandledSource;
    const int left = MillisecondsUntil(deadline);
    if (left == 0) return kCFRunLoopRunTimedOut;
    // After something was handled more may be due at once; only an idle pass sleeps.
    if (!handled) Wait(sources, Sooner(seconds >= kLongestWait ? -1 : left, ShortestTimeout(sources)));
  }
}

void RunLoop::Stop() {
  const std::lock_guard lock(mutex_);
  if (running_ == nullptr) return;
  running_->stopped = true;
  wakeUp_.Signal();
}

int RunLoop::Watch(std::unique_ptr<LoopWatch> (*make)()) {
  if (watch_ == nullptr) {
    watch_ = make();
    UpdateWatch();
  }
  return watch_->Descriptor();
}

std::vector<SourceRef> RunLoop::SourcesOf(const std::string& mode) {
  const std::lock_guard lock(mutex_);
  std::vector<SourceRef> sources;
  for (const Member& member : members_) {
    if (member.mode == mode) sources.push_back(member.source);
  }
  return sources;
}

void RunLoop::Wait(const std::vector<SourceRef>& sources, int timeoutMs) {
  std::vector<pollfd> entries{{wakeUp_.Descriptor(), POLLIN, 0}};
  for (const int descriptor : DescriptorsOf(sources)) entries.push_back({descriptor, POLLIN, 0});
  // An interrupted wait is a short one: the caller looks again.
  if (::poll(entries.data(), static_cast<nfds_t>(entries.size()), timeoutMs) >= 0 || errno == EINTR) return;
  // The system has no memory for the wait, or allows this process fewer descriptors: look at the sources now and then.
  std::this_thread::sleep_for(std::chrono::milliseconds(Sooner(timeoutMs, kLookMs)));
}

void RunLoop::UpdateWatch() {
  // Asked anew after every pass: performing a source may change what it waits for.
  const std::vector<SourceRef> sources = SourcesOf(kDefaultMode);
  std::vector<int> descriptors = DescriptorsOf(sources);
  descriptors.push_back(wakeUp_.Descriptor());
  watch_->Update(descriptors, ShortestTimeout(sources));
}

}  // namespace darwin::cf

using namespace darwin::cf;

extern "C" {

const CFRunLoopMode kCFRunLoopDefaultMode = CFSTR("kCFRunLoopDefaultMode");

CFRunLoopRef CFRunLoopGetCurrent(void) {
  return reinterpret_cast<CFRunLoopRef>(static_cast<Object*>(&RunLoop::Current()));
}

void CFRunLoopAddSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  FromLoopRef(rl).Add(FromSourceRef(source), *TextOf(&FromRef(mode)));
}

void CFRunLoopRemoveSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  FromLoopRef(rl).Remove(FromSourceRef(source), *TextOf(&FromRef(mode)));
}

Boolean CFRunLoopContainsSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  return FromLoopRef(rl).Contains(FromSourceRef(source), *TextOf(&FromRef(mode)));
}

void CFRunLoopRun(void) {
  CFRunLoopRunResult result = kCFRunLoopRunTimedOut;
  while (result == kCFRunLoopRunTimedOut || result == kCFRunLoopRunHandledSource) {
    result = RunLoop::Current().Run(kDefaultMode, kLongestWait, false);
  }
}

CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds, Boolean returnAfterSourceHandled) {
  return RunLoop::Current().Run(*TextOf(&FromRef(mode)), seconds, returnAfterSourceHandled != 0);
}

void CFRunLoopStop(CFRunLoopRef rl) {
  FromLoopRef(rl).Stop();
}

void CFRunLoopWakeUp(CFRunLoopRef rl) {
  FromLoopRef(rl).WakeUpNow();
}

}  // extern "C"
