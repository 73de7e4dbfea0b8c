#include "apps/commandline/Stop.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

TEST(StopTest, NothingStopsBeforeTheRequest) {
  Stop stop;
  EXPECT_NO_THROW(stop.Check());
  stop.Request();
  EXPECT_TRUE(stop.Requested());
  EXPECT_THROW(stop.Check(), Stopped);
}

TEST(StopTest, ARequestWakesUpWhoeverSleepsThen) {
  Stop stop;
  int calls = 0;
  {
    const Stop::WakeUp wakeUp(stop, [&calls] { ++calls; });
    stop.Request();
  }
  stop.Request();
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace apps
