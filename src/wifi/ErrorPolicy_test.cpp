#include "ErrorPolicy.h"

#include <gtest/gtest.h>

#include "testing/Switches.h"

namespace {

using wifi_testing::ExceptionsOff;
using wifi_testing::Thrown;

TEST(ErrorPolicy, ThrowsTheMessageWhileExceptionsAreOn) {
  EXPECT_EQ(Thrown([] { kelva::ReportProtocolError("x"); }), "CameraError: Camera error: x");
  EXPECT_EQ(Thrown([] { kelva::ReportProtocolError(); }), "CameraError: Camera error.");
}

TEST(ErrorPolicy, ReturnsWhileExceptionsAreOff) {
  const ExceptionsOff off;
  EXPECT_EQ(Thrown([] { kelva::ReportProtocolError("x"); }), "");
  EXPECT_EQ(Thrown([] { kelva::ReportProtocolError(); }), "");
}

TEST(ErrorPolicy, ReadsTheSwitchEachTime) {
  {
    const ExceptionsOff off;
    EXPECT_EQ(Thrown([] { kelva::ReportProtocolError("x"); }), "");
  }
  EXPECT_EQ(Thrown([] { kelva::ReportProtocolError("x"); }), "CameraError: Camera error: x");
}

}  // namespace
