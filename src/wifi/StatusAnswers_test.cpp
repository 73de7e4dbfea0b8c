#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

// The four status queries that check the size of their answer, each with its own difference.

namespace {

using namespace wifi_testing;

TEST(IsReady, AsksWhetherTheCameraIsOpenThenForFourBytes) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x04}).Asks(4).Answers({1, 0, 0, 0});
  EXPECT_TRUE(camera.IsReady());
  EXPECT_EQ(camera.calls, (Calls{"IsOpen", "ClearCancel true", "Transfer true"}));
}

TEST(IsReady, AnyBitOfTheAnswerMeansReady) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x04}).Asks(4).Answers({0, 0, 0, 0});
  EXPECT_FALSE(camera.IsReady());
  camera.Expect({0xC6, 0x00, 0x04}).Asks(4).Answers({0, 1, 0, 0});
  EXPECT_TRUE(camera.IsReady());
  camera.Expect({0xC6, 0x00, 0x04}).Asks(4).Answers({0, 0, 0, 0x80});
  EXPECT_TRUE(camera.IsReady());
}

TEST(IsReady, TouchesNothingOnAClosedCamera) {
  ScriptedCamera camera;
  camera.open = false;
  EXPECT_FALSE(camera.IsReady());
  EXPECT_EQ(camera.calls, Calls{"IsOpen"});
}

TEST(IsReady, LooksAtTheSizeAloneAndNotAtTheResult) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x04}).Asks(4).Answers({1, 0, 0, 0}).ReturnsFalse();
  EXPECT_TRUE(camera.IsReady());
}

TEST(IsReady, RefusesEveryOtherSize) {
  for (const int size : {-1, 0, 3, 5, 65536}) {
    ScriptedCamera camera;
    camera.Expect({0xC6, 0x00, 0x04}).Asks(4).Answers({1, 0, 0, 0}).Moves(size);
    EXPECT_EQ(Thrown([&] { camera.IsReady(); }), "CameraError: Camera error: IsReady() response size incorrect.");
    const ExceptionsOff off;
    camera.Expect({0xC6, 0x00, 0x04}).Asks(4).Answers({1, 0, 0, 0}).Moves(size);
    EXPECT_FALSE(camera.IsReady());
  }
}

TEST(IsReady, PassesATransferErrorOnWhateverTheSwitchSays) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x04}).Asks(4).Throws("gone");
  EXPECT_EQ(Thrown([&] { camera.IsReady(); }), "CameraTransferError: Camera error: gone");
}

std::string TimeBytes(const _VscCdbTime& time) {
  return {time.bytes, time.bytes + 14};
}

TEST(GetTime, ReturnsTheFourteenBytesAsTheyCome) {
  ScriptedCamera camera;
  const std::string bytes = Bytes({0xE8, 0x07, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 255});
  camera.Expect({0xC6, 0x00, 0x03}).Asks(14).Answers(bytes);
  EXPECT_EQ(TimeBytes(camera.GetTime()), bytes);
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true"}));
}

TEST(GetTime, ThrowsTheDefaultErrorForAnotherSize) {
  for (const int size : {-1, 0, 13, 15}) {
    ScriptedCamera camera;
    camera.Expect({0xC6, 0x00, 0x03}).Asks(14).Answers(std::string(14, '\1')).Moves(size);
    EXPECT_EQ(Thrown([&] { camera.GetTime(); }), "CameraError: Camera error.");
  }
}

TEST(GetTime, CountsAFalseResultAsNoAnswer) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x03}).Asks(14).Answers(std::string(14, '\1')).ReturnsFalse();
  EXPECT_EQ(Thrown([&] { camera.GetTime(); }), "CameraError: Camera error.");
}

TEST(GetTime, WithExceptionsOffKeepsBytesTwoAndThreeOfAShortAnswer) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x03}).Asks(14).Answers(std::string(13, '\xAA'));
  EXPECT_EQ(Hex(TimeBytes(camera.GetTime())), Hex(Bytes({0, 0, 0xAA, 0xAA, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0})));
}

TEST(GetTime, WithExceptionsOffKeepsBytesTwoAndThreeOfAFailedTransferThatMovedThem) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x03}).Asks(14).Answers(std::string(14, '\xAA')).ReturnsFalse();
  EXPECT_EQ(Hex(TimeBytes(camera.GetTime())), Hex(Bytes({0, 0, 0xAA, 0xAA, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0})));
}

TEST(GetTime, WithExceptionsOffAndNothingReceivedIsAllZero) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x03}).Asks(14).Fails();
  EXPECT_EQ(Hex(TimeBytes(camera.GetTime())), Hex(std::string(14, '\0')));
}

TEST(GetDoneCmdCount, ReadsASignedLittleEndianNumber) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x05}).Asks(4).Answers({0x04, 0x03, 0x02, 0x01});
  EXPECT_EQ(camera.GetDoneCmdCount(), 0x01020304);
  camera.Expect({0xC6, 0x00, 0x05}).Asks(4).Answers({0xFF, 0xFF, 0xFF, 0xFF});
  EXPECT_EQ(camera.GetDoneCmdCount(), -1);
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true", "ClearCancel true", "Transfer true"}));
}

TEST(GetDoneCmdCount, RefusesAnotherSizeWithAMessageWithoutFullStop) {
  for (const int size : {-4, 0, 3, 5}) {
    ScriptedCamera camera;
    camera.Expect({0xC6, 0x00, 0x05}).Asks(4).Answers({1, 1, 1, 1}).Moves(size);
    EXPECT_EQ(Thrown([&] { camera.GetDoneCmdCount(); }),
              "CameraError: Camera error: GetDoneCmdCount() response size incorrect");
    const ExceptionsOff off;
    camera.Expect({0xC6, 0x00, 0x05}).Asks(4).Answers({1, 1, 1, 1}).Moves(size);
    EXPECT_EQ(camera.GetDoneCmdCount(), 0);
  }
}

TEST(GetDoneCmdCount, CountsAFalseResultAsNoAnswer) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x05}).Asks(4).Answers({1, 1, 1, 1}).ReturnsFalse();
  EXPECT_EQ(Thrown([&] { camera.GetDoneCmdCount(); }),
            "CameraError: Camera error: GetDoneCmdCount() response size incorrect");
}

TEST(BatteryLevel, ReadsAFloatAsItIs) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x06}).Asks(4).Answers({0x00, 0x00, 0x00, 0x3F});
  EXPECT_EQ(camera.BatteryLevel(), 0.5f);
  camera.Expect({0xC6, 0x00, 0x06}).Asks(4).Answers({0x00, 0x00, 0x20, 0xC1});
  EXPECT_EQ(camera.BatteryLevel(), -10.0f);
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true", "ClearCancel true", "Transfer true"}));
}

TEST(BatteryLevel, RefusesAnotherSizeWithAMessageWithoutFullStop) {
  for (const int size : {-4, 0, 3, 5}) {
    ScriptedCamera camera;
    camera.Expect({0xC6, 0x00, 0x06}).Asks(4).Answers({0, 0, 0, 0x3F}).Moves(size);
    EXPECT_EQ(Thrown([&] { camera.BatteryLevel(); }),
              "CameraError: Camera error: BatteryLevel() response size incorrect");
    const ExceptionsOff off;
    camera.Expect({0xC6, 0x00, 0x06}).Asks(4).Answers({0, 0, 0, 0x3F}).Moves(size);
    EXPECT_EQ(camera.BatteryLevel(), 0.0f);
  }
}

TEST(BatteryLevel, CountsAFalseResultAsNoAnswer) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x06}).Asks(4).Answers({0, 0, 0, 0x3F}).ReturnsFalse();
  EXPECT_EQ(Thrown([&] { camera.BatteryLevel(); }),
            "CameraError: Camera error: BatteryLevel() response size incorrect");
}

TEST(CheckedQueries, PassATransferErrorOnWhateverTheSwitchSays) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x03}).Asks(14).Throws("a");
  EXPECT_EQ(Thrown([&] { camera.GetTime(); }), "CameraTransferError: Camera error: a");
  camera.Expect({0xC6, 0x00, 0x05}).Asks(4).Throws("b");
  EXPECT_EQ(Thrown([&] { camera.GetDoneCmdCount(); }), "CameraTransferError: Camera error: b");
  camera.Expect({0xC6, 0x00, 0x06}).Asks(4).Throws("c");
  EXPECT_EQ(Thrown([&] { camera.BatteryLevel(); }), "CameraTransferError: Camera error: c");
}

}  // namespace
