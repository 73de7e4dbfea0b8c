// When a source is asked, and what becomes of its failures.

#include <stdexcept>
#include <thread>

#include "darwin/registry/testing/ScriptedSource.h"

namespace darwin {
namespace {

TEST_F(Source, IsStartedOnceAtTheFirstLookAndAskedForNewsAtEachLaterOne) {
  EXPECT_EQ(script_.starts, 0);
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  EXPECT_EQ(script_.starts, 1);
  EXPECT_EQ(script_.dispatches, 0);
  script_.Tell();
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 1u);
  EXPECT_EQ(script_.starts, 1);
  EXPECT_EQ(script_.dispatches, 1);
}

TEST_F(Source, IsAskedWhatToWaitForOnlyWhenSomebodyCanWait) {
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  EXPECT_EQ(script_.asked, 0);
  const Listening listening;
  EXPECT_GT(script_.asked, 0);
}

TEST_F(Source, WakesTheRunLoopThroughItsDescriptor) {
  Listening listening;
  std::thread world([this] { script_.Tell(); });
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunStopped);
  world.join();
  EXPECT_EQ(listening.cameras, 1);
}

TEST_F(Source, IsAskedAtTheMomentItWantsAlthoughNothingIsReadable) {
  const Listening listening;
  script_.timeoutMs = 1;
  script_.stopAt = script_.dispatches + 5;
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunStopped);
}

TEST_F(Source, WhenNothingIsWantedTheRunLoopSleeps) {
  const Listening listening;
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  const int before = script_.dispatches;
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
  EXPECT_LE(script_.dispatches, before + 2);
}

TEST_F(Source, AMomentThatItWantsSinceAnotherThreadsLookWakesTheSleepingLoop) {
  Listening listening;
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  std::thread worker([this] {
    script_.timeoutMs = 1;
    EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
    script_.Tell();
  });
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1000, false), kCFRunLoopRunStopped);
  worker.join();
}

TEST_F(Source, AFailedStartFailsTheLookInItsOwnWordsAndIsTriedAgain) {
  script_.startFails = true;
  const CFMutableDictionaryRef matching = IOServiceMatching("Camera");
  CFRetain(matching);
  io_iterator_t iterator = 77;
  EXPECT_EQ(IOServiceGetMatchingServices(kIOMainPortDefault, matching, &iterator), kIOReturnError);
  EXPECT_EQ(iterator, 77u);
  EXPECT_EQ(CFGetRetainCount(matching), 1);
  CFRelease(matching);
  EXPECT_EQ(TheRegistry().LastSourceError(), "The bus cannot be reached.");
  script_.startFails = false;
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  EXPECT_EQ(TheRegistry().LastSourceError(), "");
  EXPECT_EQ(script_.starts, 2);
}

TEST_F(Source, SaysWhyItIsDeafOnceItHasStarted) {
  EXPECT_EQ(TheRegistry().WhyDeaf(), "");
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  EXPECT_EQ(TheRegistry().WhyDeaf(), "Nobody tells.");
  TheRegistry().SetSource(nullptr);
  EXPECT_EQ(TheRegistry().WhyDeaf(), "");
}

TEST_F(Source, AnotherSourceHasNotFailed) {
  script_.startFails = true;
  Listening();
  EXPECT_EQ(TheRegistry().LastSourceError(), "The bus cannot be reached.");
  TheRegistry().SetSource(nullptr);
  EXPECT_EQ(TheRegistry().LastSourceError(), "");
}

TEST_F(Source, AFailedStartFailsARegistrationToo) {
  script_.startFails = true;
  const Listening listening;
  EXPECT_EQ(listening.result, kIOReturnError);
}

TEST_F(Source, AFailureInTheRunLoopIsSaidOnceAndDoesNotSpin) {
  const Listening listening;
  script_.dispatchFails = true;
  script_.Tell();
  ::testing::internal::CaptureStderr();
  const int before = script_.dispatches;
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "The bus was lost.\n");
  EXPECT_LE(script_.dispatches, before + 5);
}

TEST_F(Source, AfterAFailureTheNextSuccessfulLookMendsIt) {
  script_.dispatchFails = true;
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  io_iterator_t iterator = 0;
  EXPECT_EQ(IOServiceGetMatchingServices(kIOMainPortDefault, IOServiceMatching("Camera"), &iterator), kIOReturnError);
  script_.dispatchFails = false;
  script_.Tell();
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 1u);
}

}  // namespace
}  // namespace darwin
