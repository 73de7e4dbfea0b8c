#include <gtest/gtest.h>

#include <string>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

constexpr char kVersionError[] = "CameraError: Camera error: ConsoleLog() version incorrect.";
constexpr char kSizeError[] = "CameraError: Camera error: ConsoleLog() return size incorrect.";

TEST(ConsoleLog, AsksForOneChunkAndReturnsTheTextFromByteEight) {
  ScriptedCamera camera(700);
  camera.Expect({0xC6, 0x00, 0x02}).Asks(700).Answers(Bytes({1, 0, 0, 0, 0, 0, 0, 0}) + "boot\n\nready");
  bool more = true;
  EXPECT_EQ(camera.ConsoleLog(more), "boot\n\nready");
  EXPECT_FALSE(more);
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true"}));
}

TEST(ConsoleLog, DoesNotAskWhetherTheCameraIsOpen) {
  ScriptedCamera camera;
  camera.open = false;
  camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Answers(Bytes({1, 0, 0, 0, 0, 0, 0, 0}) + "x");
  bool more = true;
  EXPECT_EQ(camera.ConsoleLog(more), "x");
}

TEST(ConsoleLog, AnyBitOfTheSecondWordMeansMore) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Answers(Bytes({1, 0, 0, 0, 0, 0, 0, 0x80}) + "x");
  bool more = false;
  EXPECT_EQ(camera.ConsoleLog(more), "x");
  EXPECT_TRUE(more);
}

TEST(ConsoleLog, TextNeedsNoTerminatorAndKeepsNuls) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Answers({1, 0, 0, 0, 0, 0, 0, 0, 'a', 0, 'b'});
  bool more = true;
  EXPECT_EQ(camera.ConsoleLog(more), Bytes({'a', 0, 'b'}));
}

TEST(ConsoleLog, OfExactlyEightBytesIsEmptyAndTellsWhetherThereIsMore) {
  ScriptedCamera camera;
  bool more = false;
  camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Answers({1, 0, 0, 0, 1, 0, 0, 0});
  EXPECT_EQ(camera.ConsoleLog(more), "");
  EXPECT_TRUE(more);
  camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Answers({1, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(camera.ConsoleLog(more), "");
  EXPECT_FALSE(more);
}

TEST(ConsoleLog, OfSevenBytesOrLessHasTheWrongSize) {
  for (const int size : {7, 4, 0, -1}) {
    ScriptedCamera camera;
    bool more = false;
    camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Answers({1, 0, 0, 0, 0, 0, 0}).Moves(size);
    EXPECT_EQ(Thrown([&] { camera.ConsoleLog(more); }), kSizeError) << size;
  }
}

TEST(ConsoleLog, OfAnotherVersionIsRefusedWhateverTheSize) {
  for (const int size : {65536, 9, 8, 7, 0}) {
    ScriptedCamera camera;
    bool more = false;
    camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Answers({2, 0, 0, 0, 0, 0, 0, 0, 'x'}).Moves(size);
    EXPECT_EQ(Thrown([&] { camera.ConsoleLog(more); }), kVersionError) << size;
  }
}

TEST(ConsoleLog, VersionIsTheWholeWord) {
  ScriptedCamera camera;
  bool more = false;
  camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Answers({1, 0, 0, 1, 0, 0, 0, 0, 'x'});
  EXPECT_EQ(Thrown([&] { camera.ConsoleLog(more); }), kVersionError);
}

TEST(ConsoleLog, WithoutAnAnswerHasNoVersion) {
  ScriptedCamera camera;
  bool more = false;
  camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Fails();
  EXPECT_EQ(Thrown([&] { camera.ConsoleLog(more); }), kVersionError);
}

TEST(ConsoleLog, DoesNotLookAtTheResult) {
  ScriptedCamera camera;
  bool more = true;
  camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Answers(Bytes({1, 0, 0, 0, 0, 0, 0, 0}) + "x").ReturnsFalse();
  EXPECT_EQ(camera.ConsoleLog(more), "x");
  EXPECT_FALSE(more);
}

TEST(ConsoleLog, WithExceptionsOffSaysThatThereIsMoreAfterAnError) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  bool more = false;
  camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Answers({2, 0, 0, 0, 0, 0, 0, 0, 'x'});
  EXPECT_EQ(camera.ConsoleLog(more), "");
  EXPECT_TRUE(more);
  more = false;
  camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Answers({1, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(camera.ConsoleLog(more), "");
  EXPECT_TRUE(more);
}

TEST(ConsoleLog, ACountBeyondTheBufferIsClamped) {
  ScriptedCamera camera(16);
  camera.Expect({0xC6, 0x00, 0x02}).Asks(16).Answers(Bytes({1, 0, 0, 0, 0, 0, 0, 0}) + "12345678").Moves(1000000);
  bool more = true;
  EXPECT_EQ(camera.ConsoleLog(more), "12345678");
}

// A camera whose chunk size changes when its cancel state is cleared, after the buffer was made.
class GrowingCamera : public ScriptedCamera {
 public:
  using ScriptedCamera::ScriptedCamera;
  void ClearCancel(bool flag) override {
    ScriptedCamera::ClearCancel(flag);
    chunkSize_ = 1024;
  }
};

TEST(ConsoleLog, AsksForNoMoreThanItsBufferHolds) {
  GrowingCamera camera(16);
  camera.Expect({0xC6, 0x00, 0x02}).Asks(16).Answers(Bytes({1, 0, 0, 0, 0, 0, 0, 0}) + "12345678");
  bool more = true;
  EXPECT_EQ(camera.ConsoleLog(more), "12345678");
}

TEST(ConsoleLog, WithAChunkSmallerThanItsHeaderIsAnErrorAndNoOverrun) {
  ScriptedCamera camera(1);
  camera.Expect({0xC6, 0x00, 0x02}).Asks(1).Answers({1});
  bool more = false;
  EXPECT_NE(Thrown([&] { camera.ConsoleLog(more); }), "");
}

TEST(ConsoleLog, PassesATransferErrorOn) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  bool more = false;
  camera.Expect({0xC6, 0x00, 0x02}).Asks(65536).Throws("gone");
  EXPECT_EQ(Thrown([&] { camera.ConsoleLog(more); }), "CameraTransferError: Camera error: gone");
}

}  // namespace
