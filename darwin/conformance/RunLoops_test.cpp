// Run loops: which results a run has, where callbacks run, and what a source is to a loop.

#include <functional>
#include <future>
#include <thread>

#include "darwin/conformance/RegistryTest.h"

namespace conformance {
namespace {

const CFRunLoopMode kOtherMode = CFSTR("AnotherMode");

/// Notes the thread of its calls, and stops the run loop when it is told to.
struct Visitor {
  bool stop = false;
  int calls = 0;
  std::thread::id thread = {};

  static void OnMatch(void* self, io_iterator_t iterator) {
    auto& visitor = *static_cast<Visitor*>(self);
    ++visitor.calls;
    visitor.thread = std::this_thread::get_id();
    while (const Object service{IOIteratorNext(iterator)}) {
    }
    if (visitor.stop) CFRunLoopStop(CFRunLoopGetCurrent());
  }
};

/// A source that a thread signals; counts its performances.
class Bell {
 public:
  Bell() { CFRunLoopAddSource(CFRunLoopGetCurrent(), source_.Get(), kCFRunLoopDefaultMode); }
  ~Bell() { CFRunLoopSourceInvalidate(source_.Get()); }
  Bell(const Bell&) = delete;
  Bell& operator=(const Bell&) = delete;

  CFRunLoopSourceRef Get() const { return source_.Get(); }
  int calls = 0;
  std::function<void()> onCall;

 private:
  static CFRunLoopSourceRef Make(Bell* self) {
    CFRunLoopSourceContext context{};
    context.info = self;
    context.perform = [](void* info) {
      auto& bell = *static_cast<Bell*>(info);
      ++bell.calls;
      if (bell.onCall) bell.onCall();
    };
    return CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context);
  }

  const Owned<CFRunLoopSourceRef> source_{Make(this)};
};

/// Runs a test on a thread of its own: on a main thread the default mode may hold sources of the system.
template <class Function>
void OnAnotherThread(Function function) {
  std::thread(function).join();
}

class RunLoops : public RegistryTest {
 protected:
  static Object Listen(const Port& port, Visitor& visitor) {
    io_iterator_t number = 0;
    IOServiceAddMatchingNotification(port.Get(), kIOFirstMatchNotification, MatchingCameras(), Visitor::OnMatch,
                                     &visitor, &number);
    Object iterator(number);
    Drain(iterator);
    return iterator;
  }
};

TEST_F(RunLoops, AThreadHasOneLoopAndEachThreadItsOwn) {
  const CFRunLoopRef here = CFRunLoopGetCurrent();
  CFRunLoopRef there = nullptr;
  EXPECT_EQ(CFRunLoopGetCurrent(), here);
  std::thread([&there] { there = CFRunLoopGetCurrent(); }).join();
  EXPECT_NE(there, here);
}

TEST_F(RunLoops, WithoutSourcesARunIsFinishedAtOnce) {
  OnAnotherThread([] { EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunFinished); });
}

TEST_F(RunLoops, ARunWithNothingToDoTimesOut) {
  const Port port;
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false), kCFRunLoopRunTimedOut);
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, true), kCFRunLoopRunTimedOut);
}

TEST_F(RunLoops, ARunSaysThatItHandledASourceWhenAskedTo) {
  const Port port;
  Visitor visitor;
  const Object iterator = Listen(port, visitor);
  Plug();
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, true), kCFRunLoopRunHandledSource);
  EXPECT_EQ(visitor.calls, 1);
}

TEST_F(RunLoops, OtherwiseItRunsOnUntilItsTime) {
  const Port port;
  Visitor visitor;
  const Object iterator = Listen(port, visitor);
  Plug();
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false), kCFRunLoopRunTimedOut);
  EXPECT_EQ(visitor.calls, 1);
}

TEST_F(RunLoops, ACallbackMayStopTheLoop) {
  const Port port;
  Visitor visitor{.stop = true};
  const Object iterator = Listen(port, visitor);
  Plug();
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunStopped);
  Plug();
  CFRunLoopRun();
  EXPECT_EQ(visitor.calls, 2);
}

TEST_F(RunLoops, AnotherThreadMayStopTheLoop) {
  const Port port;
  std::promise<void> running;
  const auto tell = [](void* promise, io_iterator_t) { static_cast<std::promise<void>*>(promise)->set_value(); };
  io_iterator_t number = 0;
  IOServiceAddMatchingNotification(port.Get(), kIOFirstMatchNotification, MatchingCameras(), tell, &running, &number);
  const Object iterator(number);
  Drain(iterator);
  Plug();
  const CFRunLoopRef here = CFRunLoopGetCurrent();
  std::thread stopper([&] {
    running.get_future().wait();  // a stop is sure to be seen by a run in progress only
    CFRunLoopStop(here);
  });
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunStopped);
  stopper.join();
}

TEST_F(RunLoops, AStopOfALoopThatDoesNotRunIsDropped) {
  const Port port;
  CFRunLoopStop(CFRunLoopGetCurrent());
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false), kCFRunLoopRunTimedOut);
}

TEST_F(RunLoops, AStopEndsTheInnermostRunAlone) {
  Bell bell;
  CFRunLoopRunResult inner = 0;
  bell.onCall = [&] {
    if (bell.calls == 1) {
      CFRunLoopSourceSignal(bell.Get());
      inner = CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false);
    } else {
      CFRunLoopStop(CFRunLoopGetCurrent());
    }
  };
  CFRunLoopSourceSignal(bell.Get());
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false), kCFRunLoopRunTimedOut);
  EXPECT_EQ(inner, kCFRunLoopRunStopped);
}

TEST_F(RunLoops, ASignalBeforeTheRunIsKept) {
  Bell bell;
  CFRunLoopSourceSignal(bell.Get());
  CFRunLoopSourceSignal(bell.Get());
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, true), kCFRunLoopRunHandledSource);
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true), kCFRunLoopRunTimedOut);
  EXPECT_EQ(bell.calls, 1);
}

TEST_F(RunLoops, ASignalAndAWakeUpReachASleepingLoop) {
  Bell bell;
  std::promise<void> running;
  bell.onCall = [&] {
    if (bell.calls == 1) running.set_value();
  };
  const CFRunLoopRef here = CFRunLoopGetCurrent();
  std::thread ringer([&] {
    running.get_future().wait();
    CFRunLoopSourceSignal(bell.Get());
    CFRunLoopWakeUp(here);
  });
  CFRunLoopSourceSignal(bell.Get());
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, true), kCFRunLoopRunHandledSource);
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, true), kCFRunLoopRunHandledSource);
  ringer.join();
  EXPECT_EQ(bell.calls, 2);
}

TEST_F(RunLoops, AnInvalidSourceIsNotPerformed) {
  Bell bell;
  const Port port;
  CFRunLoopSourceInvalidate(bell.Get());
  CFRunLoopSourceSignal(bell.Get());
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true), kCFRunLoopRunTimedOut);
  EXPECT_EQ(bell.calls, 0);
}

TEST_F(RunLoops, ASleepingLoopWakesUpForACamera) {
  const Port port;
  Visitor visitor{.stop = true};
  const Object iterator = Listen(port, visitor);
  std::thread world([this] { Plug(); });
  CFRunLoopRun();
  world.join();
  EXPECT_EQ(visitor.calls, 1);
  EXPECT_EQ(visitor.thread, std::this_thread::get_id());
}

TEST_F(RunLoops, OnlySourcesOfTheModeRun) {
  const Port port;
  Visitor visitor;
  const Object iterator = Listen(port, visitor);
  Plug();
  EXPECT_EQ(CFRunLoopRunInMode(kOtherMode, 0, false), kCFRunLoopRunFinished);
  EXPECT_EQ(visitor.calls, 0);
  RunPending();
  EXPECT_EQ(visitor.calls, 1);
}

TEST_F(RunLoops, ASecondAddToOneModeDoesNothing) {
  const Port port;
  const CFRunLoopSourceRef source = IONotificationPortGetRunLoopSource(port.Get());
  const CFIndex references = CFGetRetainCount(source);
  CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode);
  EXPECT_EQ(CFGetRetainCount(source), references);
  CFRunLoopRemoveSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode);
  EXPECT_FALSE(CFRunLoopContainsSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode));
}

TEST_F(RunLoops, APortHasOneSource) {
  const Port port;
  EXPECT_EQ(IONotificationPortGetRunLoopSource(port.Get()), IONotificationPortGetRunLoopSource(port.Get()));
}

TEST_F(RunLoops, ADestroyedPortLeavesTheLoop) {
  OnAnotherThread([] {
    { const Port port; }
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunFinished);
  });
}

TEST_F(RunLoops, AnInvalidSourceIsInNoModeAndComesIntoNone) {
  const Port port;
  const CFRunLoopSourceRef source = IONotificationPortGetRunLoopSource(port.Get());
  CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kOtherMode);
  EXPECT_TRUE(CFRunLoopSourceIsValid(source));
  CFRunLoopSourceInvalidate(source);
  EXPECT_FALSE(CFRunLoopSourceIsValid(source));
  CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kOtherMode);
  for (const CFRunLoopMode mode : {kOtherMode, kCFRunLoopDefaultMode}) {
    EXPECT_FALSE(CFRunLoopContainsSource(CFRunLoopGetCurrent(), source, mode));
  }
}

TEST_F(RunLoops, ASourceMayBeInTheLoopOfAnotherThread) {
  const Port port;
  const CFRunLoopSourceRef source = IONotificationPortGetRunLoopSource(port.Get());
  CFRunLoopRemoveSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode);
  Visitor visitor{.stop = true};
  const Object iterator = Listen(port, visitor);
  Plug();
  std::thread::id there;
  std::thread thread([&] {
    there = std::this_thread::get_id();
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode);
    CFRunLoopRun();
  });
  thread.join();
  EXPECT_EQ(visitor.thread, there);
}

TEST(RunLoopsDeathTest, ANullSourceStopsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(CFRunLoopAddSource(CFRunLoopGetCurrent(), nullptr, kCFRunLoopDefaultMode), "");
}

}  // namespace
}  // namespace conformance
