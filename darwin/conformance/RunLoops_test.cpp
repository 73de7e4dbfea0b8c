// Run loops: which results a run has, where callbacks run, and what a source is to a loop.

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

class RunLoops : public RegistryTest {
 protected:
  static Object Listen(const Port& port, Visitor& visitor) {
    io_iterator_t number = 0;
    IOServiceAddMatchingNotification(port.Get(), kIOFirstMatchNotification, IOServiceMatching(kDriver),
                                     Visitor::OnMatch, &visitor, &number);
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
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunFinished);
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
  IOServiceAddMatchingNotification(port.Get(), kIOFirstMatchNotification, IOServiceMatching(kDriver), tell, &running,
                                   &number);
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
  { const Port port; }
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunFinished);
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
