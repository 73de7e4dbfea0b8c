#include "apps/desktop/worker/Input.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace apps {
namespace {

using testing::ElementsAre;
using Clock = std::chrono::steady_clock;

TEST(InputTest, ALineIsACommandHoweverItsBytesCome) {
  Input input;
  input.Add("thumbs\t3\t1");
  EXPECT_EQ(input.Next({}, Stop()), std::nullopt);
  input.Add("2\ntarget\t/my%20pictures\t\t\t0\nqu");
  EXPECT_THAT(*input.Next({}, Stop()), ElementsAre("thumbs", "3", "12"));
  EXPECT_THAT(*input.Next({}, Stop()), ElementsAre("target", "/my pictures", "", "", "0"));
  EXPECT_EQ(input.Next({}, Stop()), std::nullopt);
  input.Add("it\n");
  EXPECT_THAT(*input.Next({}, Stop()), ElementsAre("quit"));
}

TEST(InputTest, ALineThatIsNotEncodedIsDropped) {
  Input input;
  input.Add("target\t%zz\nquit\n");
  EXPECT_THAT(*input.Next({}, Stop()), ElementsAre("quit"));
}

TEST(InputTest, WhoWaitsIsWokenByACommandAndByARequestToStop) {
  Input input;
  Stop stop;
  const auto until = Clock::now() + std::chrono::hours(1);
  std::thread command([&] { input.Add("quit\n"); });
  EXPECT_THAT(*input.Next(until, stop), ElementsAre("quit"));
  command.join();
  std::thread request([&] { stop.Request(); });
  EXPECT_THROW(input.Next(until, stop), Stopped);
  request.join();
}

}  // namespace
}  // namespace apps
