#include "Checks.h"

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

TEST(ReconcileSize, AcceptsWhatWasAnnouncedAndOneByteMore) {
  EXPECT_TRUE(kelva::ReconcileSize(5, 5, "F"));
  EXPECT_TRUE(kelva::ReconcileSize(6, 5, "F"));
  EXPECT_TRUE(kelva::ReconcileSize(0x100000000, 0xFFFFFFFF, "F"));
}

TEST(ReconcileSize, RefusesLess) {
  EXPECT_EQ(Thrown([] { kelva::ReconcileSize(4, 5, "F"); }), "CameraError: Camera error: ReadFile() truncated.");
  const ExceptionsOff off;
  EXPECT_FALSE(kelva::ReconcileSize(0, 0xFFFFFFFF, "F"));
}

TEST(ReconcileSize, StopsTheProcessForMore) {
  EXPECT_FATAL(kelva::ReconcileSize(7, 5, "AFunction"), "data.size() - 1 == fileSize", "AFunction");
  EXPECT_FATAL(kelva::ReconcileSize(0x100000005, 5, "AFunction"), "data.size() - 1 == fileSize", "AFunction");
}

}  // namespace
