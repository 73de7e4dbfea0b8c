#include "src/ui/linux/KelvaHelper/opener/Report.h"

#include <gtest/gtest.h>

namespace opener {
namespace {

TEST(Report, EachLineNamesTheProgramAndTakesItsStream) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  Say("Started.");
  Complain("Not started.");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "kelva-open: Started.\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "kelva-open: Not started.\n");
}

}  // namespace
}  // namespace opener
