#include "src/ui/linux/KelvaHelper/Report.h"

#include <gtest/gtest.h>

namespace helper {
namespace {

TEST(Report, SayWritesOneLineToStandardOutput) {
  testing::internal::CaptureStdout();
  Say("All is well.");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "kelva-helper: All is well.\n");
}

TEST(Report, ComplainWritesOneLineToStandardError) {
  testing::internal::CaptureStderr();
  Complain("All is lost.");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "kelva-helper: All is lost.\n");
}

TEST(Report, FirstLineLeavesTheTraceOut) {
  EXPECT_EQ(FirstLine("OsxCameraError: It failed.\n0 main\n1 start"), "OsxCameraError: It failed.");
  EXPECT_EQ(FirstLine("One line."), "One line.");
  EXPECT_EQ(FirstLine(""), "");
}

}  // namespace
}  // namespace helper
