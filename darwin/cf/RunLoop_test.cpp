#include "darwin/cf/RunLoop.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace darwin::cf {
namespace {

/// A source that counts how often the loop comes round to it.
class Counter final : public RunLoopSource {
 public:
  explicit Counter(int dueInMs = -1) : dueInMs_(dueInMs) {}
  void AddDescriptors(std::vector<int>&) const override {}
  int TimeoutMs() const override { return dueInMs_; }
  bool Perform() override {
    ++performed;
    if (onPerform) onPerform();
    return false;
  }

  int performed = 0;
  std::function<void()> onPerform;

 private:
  const int dueInMs_;
};

/// Owns a source of this thread's loop.
template <class Source>
class Joined {
 public:
  template <class... Arguments>
  explicit Joined(Arguments... arguments) : source_(new Source(arguments...)) {
    CFRunLoopAddSource(CFRunLoopGetCurrent(), ToSourceRef(source_), kCFRunLoopDefaultMode);
  }
  Joined(const Joined&) = delete;
  Joined& operator=(const Joined&) = delete;
  ~Joined() {
    source_->Invalidate();
    source_->Release();
  }
  Source* operator->() const { return source_; }

 private:
  Source* const source_;
};

TEST(RunLoop, WithNothingToDoItSleepsForTheWholeRun) {
  const Joined<Counter> counter;
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
  // Once before the sleep and once after it. The addition itself may cost one round more.
  EXPECT_LE(counter->performed, 3);
}

TEST(RunLoop, ATimedSourceIsPerformedAtItsMomentWithoutAnyDescriptor) {
  const Joined<Counter> counter(1);
  counter->onPerform = [&counter] {
    if (counter->performed == 5) CFRunLoopStop(CFRunLoopGetCurrent());
  };
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunStopped);
  EXPECT_EQ(counter->performed, 5);
}

TEST(RunLoop, EverySourceOfAModeIsPerformed) {
  const Joined<Counter> first;
  const Joined<Counter> second;
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  EXPECT_EQ(first->performed, 1);
  EXPECT_EQ(second->performed, 1);
}

TEST(RunLoop, ASourceThatTwoThreadsAddAtOnceIsInTheLoopOnce) {
  constexpr int kRounds = 1000;
  RunLoop& loop = RunLoop::Current();
  Counter* const counter = new Counter;
  // Threads that look through a long list keep the loop's lock busy, so that an addition is often kept waiting.
  std::vector<Counter*> crowd(2000);
  for (Counter*& one : crowd) loop.Add(*(one = new Counter), "crowd");
  std::atomic<bool> done{false};
  const auto look = [&] {
    while (!done) loop.Contains(*counter, "crowd");
  };
  std::thread firstLooker(look);
  std::thread secondLooker(look);
  for (int round = 0; round < kRounds; ++round) {
    std::thread other([&] { loop.Add(*counter, "race"); });
    loop.Add(*counter, "race");
    other.join();
    loop.Run("race", 0, false);
    loop.Remove(*counter, "race");
  }
  done = true;
  firstLooker.join();
  secondLooker.join();
  EXPECT_EQ(counter->performed, kRounds);
  counter->Release();
  for (Counter* one : crowd) {
    one->Invalidate();
    one->Release();
  }
}

TEST(RunLoop, DoesNotSpinWhenTheSystemRefusesToWait) {
  const Joined<Counter> counter;
  rlimit before{};
  ::getrlimit(RLIMIT_NOFILE, &before);
  // Poll refuses more entries than this process may have descriptors.
  const rlimit none{0, before.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &none);
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_GE(counter->performed, 1);
  EXPECT_LE(counter->performed, 4);
}

TEST(RunLoop, ASourceMayInvalidateItselfAndTheNext) {
  const Joined<Counter> first;
  const Joined<Counter> second;
  first->onPerform = [&] {
    first->Invalidate();
    second->Invalidate();
  };
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunFinished);
  EXPECT_EQ(first->performed, 1);
  EXPECT_EQ(second->performed, 0);
}

TEST(RunLoop, ASourceThatThrowsKeepsNoOtherFromItsTurn) {
  const Joined<Counter> first;
  const Joined<Counter> second;
  first->onPerform = [] { throw std::runtime_error("thrown by a source"); };
  EXPECT_THROW(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false), std::runtime_error);
  EXPECT_EQ(second->performed, 1);
}

TEST(RunLoop, ACallbackMayRunTheLoop) {
  const Joined<Counter> counter;
  counter->onPerform = [&counter] {
    if (counter->performed == 1) CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  };
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  EXPECT_EQ(counter->performed, 2);
}

TEST(RunLoop, ADescriptorSourceIsCalledWhileItsDescriptorIsReadable) {
  base::WakeUp bell;
  bell.Signal();
  bell.Signal();
  int calls = 0;
  const CFRunLoopSourceRef source = MakeDescriptorSource(bell.Descriptor(), [&] {
    char one = 0;
    calls += static_cast<int>(::read(bell.Descriptor(), &one, 1));
  });
  CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode);
  while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true) == kCFRunLoopRunHandledSource) {
  }
  EXPECT_EQ(calls, 2);
  CFRunLoopSourceInvalidate(source);
  CFRelease(source);
}

}  // namespace
}  // namespace darwin::cf
