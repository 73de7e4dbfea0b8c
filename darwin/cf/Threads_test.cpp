// What several threads may do to run loops, sources and constant strings at once. ThreadSanitizer says whether they may.

#include <gtest/gtest.h>

#include <thread>

#include "base/testing/Crowd.h"
#include "darwin/cf/RunLoop.h"

namespace darwin::cf {
namespace {

constexpr int kRounds = 3000;

class Idle final : public RunLoopSource {
 public:
  void AddDescriptors(std::vector<int>&) const override {}
  bool Perform() override { return false; }
};

/// A source that is in this thread's loop until it goes.
class Resident {
 public:
  Resident() { CFRunLoopAddSource(CFRunLoopGetCurrent(), ToSourceRef(source_), kCFRunLoopDefaultMode); }
  ~Resident() {
    source_->Invalidate();
    source_->Release();
  }
  Resident(const Resident&) = delete;
  Resident& operator=(const Resident&) = delete;

 private:
  RunLoopSource* const source_ = new Idle;
};

void AddAskAndRemove(CFRunLoopRef loop) {
  auto* source = new Idle;
  const CFRunLoopSourceRef ref = ToSourceRef(source);
  CFRunLoopAddSource(loop, ref, kCFRunLoopDefaultMode);
  EXPECT_TRUE(CFRunLoopContainsSource(loop, ref, kCFRunLoopDefaultMode));
  CFRunLoopRemoveSource(loop, ref, kCFRunLoopDefaultMode);
  EXPECT_FALSE(CFRunLoopContainsSource(loop, ref, kCFRunLoopDefaultMode));
  source->Release();
}

void AddAndInvalidate(CFRunLoopRef loop) {
  auto* source = new Idle;
  CFRunLoopAddSource(loop, ToSourceRef(source), kCFRunLoopDefaultMode);
  source->Invalidate();
  source->Release();
}

TEST(Threads, SourcesComeAndGoWhileTheLoopRuns) {
  const Resident resident;
  const CFRunLoopRef loop = CFRunLoopGetCurrent();
  const base::Crowd crowd(kRounds, {[loop] { AddAskAndRemove(loop); }, [loop] { AddAskAndRemove(loop); },
                                    [loop] { AddAndInvalidate(loop); }, [loop] { CFRunLoopStop(loop); }});
  while (crowd.IsBusy()) CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
}

TEST(Threads, AnyMayStopALoopThatRunsAgainAndAgain) {
  const Resident resident;
  const CFRunLoopRef loop = CFRunLoopGetCurrent();
  const auto stop = [loop] { CFRunLoopStop(loop); };
  const base::Crowd crowd(10 * kRounds, {stop, stop, stop});
  while (crowd.IsBusy()) CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
}

TEST(Threads, LoopsComeAndGoWhileSourcesLeaveThemAll) {
  const CFRunLoopRef loop = CFRunLoopGetCurrent();
  const auto run = [] {
    for (int i = 0; i < 20; ++i) CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  };
  const auto live = [run] { std::thread(run).join(); };
  const base::Crowd crowd(kRounds / 6, {live, live});
  while (crowd.IsBusy()) AddAndInvalidate(loop);
}

TEST(Threads, AConstantStringIsOneObjectForAllOfThem) {
  const CFStringRef same = CFSTR("same");
  const auto ask = [same, number = 0]() mutable {
    EXPECT_EQ(CFSTR("same"), same);
    __CFStringMakeConstantString(std::to_string(++number).c_str());
  };
  const base::Crowd crowd(kRounds, {ask, ask});
}

}  // namespace
}  // namespace darwin::cf
