#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

std::string RecordBytes(const _VscCdbCameraInformation& info) {
  std::string bytes(sizeof info, '\0');
  std::memcpy(bytes.data(), &info, sizeof info);
  return bytes;
}

_VscCdbCameraInformation Scribbled() {
  _VscCdbCameraInformation info;
  std::memset(&info, 0x5A, sizeof info);
  return info;
}

void ExpectInformation(ScriptedCamera& camera, std::initializer_list<int> announced, const std::string& answer) {
  camera.Expect({0xC2, 0x00, 0x00});
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers(announced);
  camera.Expect({0xC4, 0x00, 0x01, 0, 0, 0, 0}).Asks(644).Answers(answer);
}

TEST(CameraInformation, SelectsAsksTheSizeAndReadsOnce) {
  ScriptedCamera camera;
  ExpectInformation(camera, {0x84, 0x02, 0, 0}, Pattern(644));
  _VscCdbCameraInformation info = Scribbled();
  EXPECT_TRUE(camera.CameraInformation(info));
  EXPECT_TRUE(RecordBytes(info) == Pattern(644));
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true", "Transfer true", "Transfer true"}));
}

TEST(CameraInformation, DoesNotAskWhetherTheCameraIsOpen) {
  ScriptedCamera camera;
  camera.open = false;
  ExpectInformation(camera, {0x84, 0x02, 0, 0}, Pattern(644));
  _VscCdbCameraInformation info;
  EXPECT_TRUE(camera.CameraInformation(info));
}

TEST(CameraInformation, ClearsTheRecordButForItsLastField) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x00}).Fails();
  _VscCdbCameraInformation info = Scribbled();
  EXPECT_FALSE(camera.CameraInformation(info));
  EXPECT_EQ(RecordBytes(info), std::string(640, '\0') + Bytes({0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(CameraInformation, ReturnsFalseWhenTheSizeOrTheReadFails) {
  ScriptedCamera camera;
  _VscCdbCameraInformation info = Scribbled();
  camera.Expect({0xC2, 0x00, 0x00});
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Fails();
  EXPECT_FALSE(camera.CameraInformation(info));

  info = Scribbled();
  camera.Expect({0xC2, 0x00, 0x00});
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({0x84, 0x02, 0, 0});
  camera.Expect({0xC4, 0x00, 0x01}).Asks(644).Answers(Pattern(644)).ReturnsFalse();
  EXPECT_FALSE(camera.CameraInformation(info));
  EXPECT_EQ(RecordBytes(info), std::string(640, '\0') + Bytes({0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(CameraInformation, DoesNotCheckHowMuchOfTheSizeCame) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x00});
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({0x84, 0x02, 0, 0}).Moves(1);
  camera.Expect({0xC4, 0x00, 0x01}).Asks(644).Answers(Pattern(644));
  _VscCdbCameraInformation info;
  EXPECT_TRUE(camera.CameraInformation(info));
}

TEST(CameraInformation, AcceptsOneByteMoreThanAnnounced) {
  ScriptedCamera camera;
  ExpectInformation(camera, {0x83, 0x02, 0, 0}, Pattern(644));
  _VscCdbCameraInformation info;
  EXPECT_TRUE(camera.CameraInformation(info));
  EXPECT_TRUE(RecordBytes(info) == Pattern(644));
}

TEST(CameraInformation, AcceptsAnyShorterAnswerAndFillsTheRestWithZeros) {
  ScriptedCamera camera;
  ExpectInformation(camera, {0x84, 0x02, 0, 0}, "abc");
  _VscCdbCameraInformation info = Scribbled();
  EXPECT_TRUE(camera.CameraInformation(info));
  EXPECT_TRUE(RecordBytes(info) == Field("abc", 644));
}

TEST(CameraInformation, TwoBytesMoreThanAnnouncedStopTheProcess) {
  ScriptedCamera camera;
  ExpectInformation(camera, {0x82, 0x02, 0, 0}, Pattern(644));
  _VscCdbCameraInformation info;
  EXPECT_FATAL(camera.CameraInformation(info), "(size - 1) == fileSize", "CameraInformation");
  camera.ForgetTheRest();
}

TEST(CameraInformation, TheAssertionHoldsWithExceptionsOffToo) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  ExpectInformation(camera, {0, 0, 0, 0}, Pattern(644));
  _VscCdbCameraInformation info;
  EXPECT_FATAL(camera.CameraInformation(info), "(size - 1) == fileSize", "CameraInformation");
  camera.ForgetTheRest();
}

TEST(CameraInformation, ComparesTheSizesAsSignedNumbers) {
  ScriptedCamera camera;
  ExpectInformation(camera, {0xFF, 0xFF, 0xFF, 0xFF}, Pattern(644));
  _VscCdbCameraInformation info;
  EXPECT_FATAL(camera.CameraInformation(info), "(size - 1) == fileSize", "CameraInformation");
  camera.ForgetTheRest();
}

TEST(CameraInformation, ReadsIntoABufferThatHoldsWhatItAsksFor) {
  ScriptedCamera camera(16);
  ExpectInformation(camera, {0x84, 0x02, 0, 0}, Pattern(644));
  _VscCdbCameraInformation info;
  EXPECT_TRUE(camera.CameraInformation(info));
  EXPECT_TRUE(RecordBytes(info) == Pattern(644));
}

TEST(CameraInformation, ANegativeCountIsNotLargerThanTheSize) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x00});
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({0x84, 0x02, 0, 0});
  camera.Expect({0xC4, 0x00, 0x01}).Asks(644).Answers("").Moves(-7);
  _VscCdbCameraInformation info = Scribbled();
  EXPECT_TRUE(camera.CameraInformation(info));
  EXPECT_TRUE(RecordBytes(info) == std::string(644, '\0'));
}

TEST(CameraInformation, PassesATransferErrorOn) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x00});
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Throws("gone");
  _VscCdbCameraInformation info;
  EXPECT_EQ(Thrown([&] { camera.CameraInformation(info); }), "CameraTransferError: Camera error: gone");
}

}  // namespace
