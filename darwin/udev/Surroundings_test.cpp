#include "darwin/udev/Surroundings.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace darwin::udev {
namespace {

TEST(ProcessSurroundingsTest, ANodeThatMayBeReadAndWrittenIsUsable) {
  EXPECT_EQ(ProcessSurroundings().WhyNotUsable("/dev/null"), 0);
}

TEST(ProcessSurroundingsTest, AMissingNodeSaysSo) {
  EXPECT_EQ(ProcessSurroundings().WhyNotUsable("/dev/sg-none"), ENOENT);
}

TEST(ProcessSurroundingsTest, TheClockNeverGoesBack) {
  ProcessSurroundings process;
  const auto first = process.NowMs();
  EXPECT_GE(process.NowMs(), first);
}

TEST(ProcessSurroundingsTest, APauseTakesAsLongAsAsked) {
  ProcessSurroundings process;
  const auto first = process.NowMs();
  process.SleepMs(3);
  EXPECT_GE(process.NowMs(), first + 3);
}

TEST(ProcessSurroundingsTest, AReportIsOneLineOnStandardError) {
  testing::internal::CaptureStderr();
  ProcessSurroundings().Report("Something is so.");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "kelva: Something is so.\n");
}

TEST(ProcessSurroundingsTest, AReportGoesToWhoAsksForIt) {
  std::string heard;
  testing::internal::CaptureStderr();
  ProcessSurroundings([&heard](const std::string& sentence) { heard = sentence; }).Report("Something is so.");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(heard, "Something is so.");
}

}  // namespace
}  // namespace darwin::udev
