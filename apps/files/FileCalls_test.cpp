#include "apps/files/FileCalls.h"

#include <gtest/gtest.h>

#include "apps/files/testing/RecordingCalls.h"

namespace apps {
namespace {

TEST(FileCallsTest, OthersStandInForTheSystemsOnlyAsLongAsTheyLive) {
  FileCalls& system = FileCalls::Current();
  {
    RecordingCalls recording("/");
    EXPECT_EQ(&FileCalls::Current(), &recording);
  }
  EXPECT_EQ(&FileCalls::Current(), &system);
}

TEST(FileCallsTest, ACallThatASignalInterruptsIsRepeated) {
  int calls = 0;
  EXPECT_EQ(UntilDone([&] {
              errno = EINTR;
              return ++calls < 3 ? -1 : 7;
            }),
            7);
  EXPECT_EQ(calls, 3);
}

TEST(FileCallsTest, AnyOtherFailureIsTheCallers) {
  int calls = 0;
  EXPECT_EQ(UntilDone([&] {
              ++calls;
              errno = EIO;
              return -1;
            }),
            -1);
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace apps
