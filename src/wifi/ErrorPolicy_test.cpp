#include "ErrorPolicy.h"

#include <gtest/gtest.h>

#include "testing/Switches.h"

namespace {

using wifi_testing::ExceptionsOff;
using wifi_testing::Thrown;

TEST(ErrorPolicy, ThrowsTheMessageWhileExceptionsAreOn) {
  EXPECT_EQ(Thrown([] { vsc::ReportProtocolError("x"); }), "CameraError: Camera error: x");
  EXPECT_EQ(Thrown([] { vsc::ReportProtocolError(); }), "CameraError: Camera error.");
}

TEST(ErrorPolicy, ReturnsWhileExceptionsAreOff) {
  const ExceptionsOff off;
  EXPECT_EQ(Thrown([] { vsc::ReportProtocolError("x"); }), "");
  EXPECT_EQ(Thrown([] { vsc::ReportProtocolError(); }), "");
}

TEST(ErrorPolicy, ReadsTheSwitchEachTime) {
  {
    const ExceptionsOff off;
    EXPECT_EQ(Thrown([] { vsc::ReportProtocolError("x"); }), "");
  }
  EXPECT_EQ(Thrown([] { vsc::ReportProtocolError("x"); }), "CameraError: Camera error: x");
}

}  // namespace
