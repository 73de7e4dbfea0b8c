#include "src/ui/linux/KelvaHelper/SignalStop.h"

#include <gtest/gtest.h>
#include <signal.h>

namespace helper {
namespace {

class SignalStopTest : public testing::TestWithParam<int> {};

TEST_P(SignalStopTest, EndsTheRunLoop) {
  const SignalStop stop;
  ::raise(GetParam());
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, 0), kCFRunLoopRunStopped);
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, SignalStopTest, testing::Values(SIGTERM, SIGINT, SIGHUP));

TEST(SignalStop, WithoutASignalTheLoopRunsOn) {
  const SignalStop stop;
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, 0), kCFRunLoopRunTimedOut);
}

TEST(SignalStop, LeavesTheRunLoopWhenItEnds) {
  { const SignalStop stop; }
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, 0), kCFRunLoopRunFinished);
}

}  // namespace
}  // namespace helper
