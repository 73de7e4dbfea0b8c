#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <string>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

TEST(Reboot, IsOneCommandWithoutData) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x03, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  camera.Reboot();
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true"}));
}

TEST(Reboot, IgnoresTheResult) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x03}).Fails();
  EXPECT_EQ(Thrown([&] { camera.Reboot(); }), "");
}

TEST(Reboot, PassesATransferErrorOn) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x03}).Throws("gone");
  EXPECT_EQ(Thrown([&] { camera.Reboot(); }), "CameraTransferError: Camera error: gone");
}

TEST(CaptureImage, PassesItsFlagToBothAndReturnsTheResult) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x00}).Flag(false);
  EXPECT_TRUE(camera.CaptureImage(false));
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel false", "Transfer false"}));
  camera.calls.clear();
  camera.Expect({0xC0, 0x00, 0x00}).Flag(true).Fails();
  EXPECT_FALSE(camera.CaptureImage(true));
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true"}));
}

TEST(DisableWifi, PassesItsFlagToBothAndReturnsTheResult) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x0D}).Flag(false);
  EXPECT_TRUE(camera.DisableWifi(false));
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel false", "Transfer false"}));
  camera.calls.clear();
  camera.Expect({0xC0, 0x00, 0x0D}).Fails();
  EXPECT_FALSE(camera.DisableWifi(true));
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true"}));
}

TEST(ClosedCamera, CommandsThatDoNotAskGoStraightToTheTransfer) {
  ScriptedCamera camera;
  camera.open = false;
  camera.Expect({0xC6, 0x00, 0x03}).Asks(14).Answers(std::string(14, '\1'));
  camera.GetTime();
  camera.Expect({0xC0, 0x00, 0x00});
  EXPECT_TRUE(camera.CaptureImage(true));
  camera.Expect({0xC0, 0x00, 0x0D});
  EXPECT_TRUE(camera.DisableWifi(true));
  camera.Expect({0xC0, 0x00, 0x03});
  camera.Reboot();
  camera.Expect({0xC6, 0x00, 0x05}).Asks(4).Answers({1, 0, 0, 0});
  EXPECT_EQ(camera.GetDoneCmdCount(), 1);
}

TEST(MonitorKnockCmd, DoesNothingAndReturnsFalse) {
  ScriptedCamera camera;
  EXPECT_FALSE(camera.MonitorKnockCmd());
  camera.open = false;
  EXPECT_FALSE(camera.MonitorKnockCmd());
  EXPECT_EQ(camera.calls, Calls{});
}

// The two monitor commands, which differ in byte 2 alone.
struct Monitor {
  bool (Camera::*command)(const char*);
  int subCode;
};

std::ostream& operator<<(std::ostream& out, const Monitor& monitor) {
  return out << "sub-code " << monitor.subCode;
}

class MonitorCommands : public testing::TestWithParam<Monitor> {
 protected:
  bool Send(const char* text) { return (camera_.*GetParam().command)(text); }
  Step& Expect() { return camera_.Expect({0xC0, 0x00, GetParam().subCode}); }
  ScriptedCamera camera_;
};

TEST_P(MonitorCommands, SendTheWholeTextWithItsNul) {
  Expect().Sends(Bytes({'s', 't', 'a', 't', 'u', 's', 0}));
  EXPECT_TRUE(Send("status"));
  EXPECT_EQ(camera_.calls, (Calls{"IsOpen", "ClearCancel true", "Transfer true"}));
}

TEST_P(MonitorCommands, SendOneByteForAnEmptyText) {
  Expect().Sends(Bytes({0}));
  EXPECT_TRUE(Send(""));
}

TEST_P(MonitorCommands, ReturnTheResult) {
  Expect().Sends(Bytes({'x', 0})).Fails();
  EXPECT_FALSE(Send("x"));
}

TEST_P(MonitorCommands, TouchNothingOnAClosedCamera) {
  camera_.open = false;
  EXPECT_FALSE(Send("x"));
  EXPECT_EQ(camera_.calls, Calls{"IsOpen"});
}

TEST_P(MonitorCommands, TurnATransferErrorIntoFalse) {
  Expect().Sends(Bytes({'x', 0})).Throws("gone");
  EXPECT_FALSE(Send("x"));
}

TEST_P(MonitorCommands, TurnAnyCameraErrorIntoFalse) {
  const ExceptionsOff off;
  Expect().Sends(Bytes({'x', 0})).Then([] { throw CameraError(); });
  EXPECT_FALSE(Send("x"));
}

TEST_P(MonitorCommands, LetOtherExceptionsPass) {
  Expect().Sends(Bytes({'x', 0})).Then([] { throw std::runtime_error("not a camera's"); });
  EXPECT_THROW(Send("x"), std::runtime_error);
}

INSTANTIATE_TEST_SUITE_P(Both, MonitorCommands,
                         testing::Values(Monitor{&Camera::MonitorCmd, 0xFF},
                                         Monitor{&Camera::MonitorCmdSingleChar, 0xFE}));

TEST(SetTime, SendsTheFourteenBytesAsTheyLie) {
  ScriptedCamera camera;
  const _VscCdbTime time{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 255}};
  camera.Expect({0xC0, 0x00, 0x04}).Sends(Bytes({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 255}));
  camera.SetTime(time);
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true"}));
}

TEST(SetTime, IgnoresResultAndSize) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x04}).Sends(std::string(14, '\0')).Moves(3).ReturnsFalse();
  EXPECT_EQ(Thrown([&] { camera.SetTime(_VscCdbTime{}); }), "");
}

}  // namespace
