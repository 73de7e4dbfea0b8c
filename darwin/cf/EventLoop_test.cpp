#include "darwin/cf/EventLoop.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <memory>
#include <stdexcept>
#include <thread>

#include "base/WakeUp.h"
#include "darwin/cf/RunLoopSource.h"

namespace darwin {
namespace {

bool IsReadable(int descriptor, int timeoutMs = 0) {
  pollfd entry{descriptor, POLLIN, 0};
  return ::poll(&entry, 1, timeoutMs) == 1;
}

/// A descriptor that the test makes readable, and its source in this thread's loop.
class Bell {
 public:
  Bell() : source_(cf::MakeDescriptorSource(wakeUp_.Descriptor(), [this] { Answer(); })) {
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source_, kCFRunLoopDefaultMode);
  }
  ~Bell() {
    CFRunLoopSourceInvalidate(source_);
    CFRelease(source_);
  }
  Bell(const Bell&) = delete;
  Bell& operator=(const Bell&) = delete;

  void Ring() { wakeUp_.Signal(); }
  int Answered() const { return answered_; }
  bool throws = false;

 private:
  void Answer() {
    wakeUp_.Clear();
    ++answered_;
    if (throws) throw std::runtime_error("thrown by a source");
  }

  base::WakeUp wakeUp_;
  const CFRunLoopSourceRef source_;
  int answered_ = 0;
};

/// A source that is due at a moment, once.
class Alarm final : public cf::RunLoopSource {
 public:
  explicit Alarm(int dueInMs) : dueInMs_(dueInMs) {}
  void AddDescriptors(std::vector<int>&) const override {}
  int TimeoutMs() const override { return dueInMs_; }
  bool Perform() override {
    ++performed;
    return false;
  }
  int performed = 0;

 private:
  const int dueInMs_;
};

TEST(EventLoop, TheDescriptorStaysTheSame) {
  EXPECT_EQ(EventDescriptor(), EventDescriptor());
}

TEST(EventLoop, AnIdleLoopIsNotReadable) {
  const Bell bell;
  EventDescriptor();
  DispatchEvents();
  EXPECT_FALSE(IsReadable(EventDescriptor()));
}

TEST(EventLoop, ASourceWithSomethingToDoMakesItReadableUntilItIsDispatched) {
  Bell bell;
  DispatchEvents();
  bell.Ring();
  EXPECT_TRUE(IsReadable(EventDescriptor()));
  DispatchEvents();
  EXPECT_EQ(bell.Answered(), 1);
  EXPECT_FALSE(IsReadable(EventDescriptor()));
}

TEST(EventLoop, ASourceAddedLaterIsWatchedToo) {
  const int descriptor = EventDescriptor();
  DispatchEvents();
  Bell late;
  EXPECT_TRUE(IsReadable(descriptor)) << "so that the program dispatches and the source is taken in";
  DispatchEvents();
  late.Ring();
  EXPECT_TRUE(IsReadable(descriptor));
  DispatchEvents();
  EXPECT_EQ(late.Answered(), 1);
}

TEST(EventLoop, ASourceIsWatchedAlthoughTheRoundThatTookItInThrew) {
  const int descriptor = EventDescriptor();
  DispatchEvents();
  Bell bell;
  Bell thrower;
  thrower.throws = true;
  thrower.Ring();
  EXPECT_THROW(DispatchEvents(), std::runtime_error);
  EXPECT_FALSE(IsReadable(descriptor));
  bell.Ring();
  EXPECT_TRUE(IsReadable(descriptor));
}

TEST(EventLoop, ASourceThatLeftIsNotWatched) {
  const int descriptor = EventDescriptor();
  {
    Bell bell;
    DispatchEvents();
    bell.Ring();
  }
  DispatchEvents();
  EXPECT_FALSE(IsReadable(descriptor));
}

TEST(EventLoop, AMomentMakesItReadable) {
  auto* alarm = new Alarm(1);
  CFRunLoopAddSource(CFRunLoopGetCurrent(), cf::ToSourceRef(alarm), kCFRunLoopDefaultMode);
  EventDescriptor();
  DispatchEvents();
  EXPECT_TRUE(IsReadable(EventDescriptor(), 10'000));
  const int before = alarm->performed;
  DispatchEvents();
  EXPECT_EQ(alarm->performed, before + 1);
  alarm->Invalidate();
  alarm->Release();
}

TEST(EventLoop, AMomentThatIsFarDoesNotMakeItReadableYet) {
  auto* alarm = new Alarm(60'000);
  CFRunLoopAddSource(CFRunLoopGetCurrent(), cf::ToSourceRef(alarm), kCFRunLoopDefaultMode);
  EventDescriptor();
  DispatchEvents();
  EXPECT_FALSE(IsReadable(EventDescriptor()));
  alarm->Invalidate();
  alarm->Release();
}

TEST(EventLoop, EachThreadHasItsOwnDescriptor) {
  int there = -1;
  bool readable = true;
  Bell bell;
  DispatchEvents();
  bell.Ring();
  std::thread([&] {
    there = EventDescriptor();
    DispatchEvents();
    readable = IsReadable(there);
  }).join();
  EXPECT_NE(there, EventDescriptor());
  EXPECT_FALSE(readable);
  EXPECT_TRUE(IsReadable(EventDescriptor()));
}

}  // namespace
}  // namespace darwin
