#include "Camera.h"

#include <gtest/gtest.h>

#include "testing/ScriptedCamera.h"

namespace {

using wifi_testing::ScriptedCamera;

TEST(Camera, EqualsNothingNotEvenItself) {
  const ScriptedCamera one;
  const ScriptedCamera other;
  EXPECT_FALSE(one.Camera::operator==(one));
  EXPECT_FALSE(one.Camera::operator==(other));
}

TEST(Camera, HexDumpIsOffAtFirstAndEachChangeReturnsThePreviousValue) {
  ScriptedCamera camera;
  EXPECT_FALSE(camera.setHexDump(true));
  EXPECT_TRUE(camera.setHexDump(true));
  EXPECT_TRUE(camera.setHexDump(false));
  EXPECT_FALSE(camera.enableHexDump());
  EXPECT_TRUE(camera.enableHexDump());
  EXPECT_TRUE(camera.disableHexDump());
  EXPECT_FALSE(camera.disableHexDump());
}

TEST(Camera, HexDumpIsKeptPerCamera) {
  ScriptedCamera one;
  ScriptedCamera other;
  one.enableHexDump();
  EXPECT_FALSE(other.enableHexDump());
}

// A transport that logs its traffic when it is told to.
class LoggingCamera : public ScriptedCamera {
 public:
  bool Logs() const { return hexDump_; }
};

TEST(Camera, HexDumpIsReadByATransportThatDerivesFromIt) {
  LoggingCamera camera;
  EXPECT_FALSE(camera.Logs());
  camera.enableHexDump();
  EXPECT_TRUE(camera.Logs());
}

TEST(Camera, ExceptionsAreOnAtFirst) {
  EXPECT_TRUE(Camera::throwExceptions_);
}

TEST(Camera, TakesItsTwoSizesInOrder) {
  const ScriptedCamera camera(7, 11);
  EXPECT_EQ(camera.chunkSize_, 7);
  EXPECT_EQ(camera.progressInterval_, 11);
}

}  // namespace
