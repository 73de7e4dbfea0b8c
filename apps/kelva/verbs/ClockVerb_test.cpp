#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using ClockVerbTest = VerbTest;

TEST_F(ClockVerbTest, TheClockIsSetAndShownInUtc) {
  const Ran ran = Run({"time", "--set", "2001-02-03T04:05:06"});
  EXPECT_EQ(ran.code, ExitCode::kDone) << ran.err;
  EXPECT_TRUE(ran.out.starts_with("2001-02-03T04:05:06.")) << ran.out;
  EXPECT_NE(ran.out.find("; taken as UTC, "), std::string::npos);
}

TEST_F(ClockVerbTest, AWrongTimeOrZoneIsAUsageError) {
  EXPECT_EQ(Run({"time", "--set", "yesterday"}).code, ExitCode::kUsage);
  EXPECT_EQ(Run({"time", "--zone", "mars"}).code, ExitCode::kUsage);
}

}  // namespace
}  // namespace apps
