#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

// 1, -2, 0.5, 0.25, -8.0, 0x01020304: the six fields without gaps.
const std::string kWire = Bytes({1,    0,    0,    0,                       //
                                 0xFE, 0xFF, 0xFF, 0xFF,                    //
                                 0,    0,    0,    0x3F,                    //
                                 0,    0,    0,    0,    0, 0, 0xD0, 0x3F,  //
                                 0,    0,    0,    0,    0, 0, 0x20, 0xC0,  //
                                 0x04, 0x03, 0x02, 0x01});

void ExpectWhole(const _ManualControlsState& state) {
  EXPECT_EQ(state.first, 1);
  EXPECT_EQ(state.second, -2);
  EXPECT_EQ(state.third, 0.5f);
  EXPECT_EQ(state.fourth, 0.25);
  EXPECT_EQ(state.fifth, -8.0);
  EXPECT_EQ(state.sixth, 0x01020304);
}

_ManualControlsState Scribbled() {
  _ManualControlsState state;
  std::memset(&state, 0x5A, sizeof state);
  return state;
}

TEST(GetManualControlsState, AsksForFortyBytesAndDecodesThirtyTwo) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x07}).Asks(40).Answers(kWire + "12345678");
  _ManualControlsState state = Scribbled();
  EXPECT_TRUE(camera.GetManualControlsState(state));
  ExpectWhole(state);
  EXPECT_EQ(camera.calls, (Calls{"IsOpen", "ClearCancel true", "Transfer true"}));
}

TEST(GetManualControlsState, AcceptsThirtyTwoBytes) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x07}).Asks(40).Answers(kWire);
  _ManualControlsState state = Scribbled();
  EXPECT_TRUE(camera.GetManualControlsState(state));
  ExpectWhole(state);
}

TEST(GetManualControlsState, ThrowsForThirtyOneBytesWithoutFullStop) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x07}).Asks(40).Answers(kWire.substr(0, 31));
  _ManualControlsState state = Scribbled();
  EXPECT_EQ(Thrown([&] { camera.GetManualControlsState(state); }),
            "CameraError: Camera error: GetManualControlsState() unexpected response length");
  EXPECT_EQ(state.first, 1);
}

TEST(GetManualControlsState, WithExceptionsOffReturnsFalseAndKeepsTheReceivedBytesOverZeros) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x07}).Asks(40).Answers(kWire.substr(0, 10));
  _ManualControlsState state = Scribbled();
  EXPECT_FALSE(camera.GetManualControlsState(state));
  EXPECT_EQ(state.first, 1);
  EXPECT_EQ(state.second, -2);
  EXPECT_EQ(state.third, 0.0f);
  EXPECT_EQ(state.fourth, 0.0);
  EXPECT_EQ(state.fifth, 0.0);
  EXPECT_EQ(state.sixth, 0);
}

TEST(GetManualControlsState, DecodesNothingBeyondTheCountReceived) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x07}).Asks(40).Answers(kWire).Moves(6);
  _ManualControlsState state = Scribbled();
  EXPECT_FALSE(camera.GetManualControlsState(state));
  EXPECT_EQ(state.first, 1);
  EXPECT_EQ(state.second, 0xFFFE);
  EXPECT_EQ(state.third, 0.0f);
  EXPECT_EQ(state.sixth, 0);
}

TEST(GetManualControlsState, TreatsANegativeCountAsNothing) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x07}).Asks(40).Answers(kWire).Moves(-1);
  _ManualControlsState state = Scribbled();
  EXPECT_FALSE(camera.GetManualControlsState(state));
  EXPECT_EQ(state.first, 0);
}

TEST(GetManualControlsState, AcceptsACountBeyondTheBuffer) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x07}).Asks(40).Answers(kWire).Moves(1 << 30);
  _ManualControlsState state = Scribbled();
  EXPECT_TRUE(camera.GetManualControlsState(state));
  ExpectWhole(state);
}

TEST(GetManualControlsState, ReadsIntoABufferThatHoldsWhatItAsksFor) {
  for (const int chunkSize : {1, 16, 700}) {
    ScriptedCamera camera(chunkSize);
    camera.Expect({0xC6, 0x00, 0x07}).Asks(40).Answers(kWire + "12345678");
    _ManualControlsState state = Scribbled();
    EXPECT_TRUE(camera.GetManualControlsState(state));
    ExpectWhole(state);
  }
}

TEST(GetManualControlsState, ReturnsFalseForAFailedTransferWithoutException) {
  ScriptedCamera camera;
  camera.Expect({0xC6, 0x00, 0x07}).Asks(40).Answers(kWire).ReturnsFalse();
  _ManualControlsState state = Scribbled();
  EXPECT_FALSE(camera.GetManualControlsState(state));
}

TEST(GetManualControlsState, TouchesNothingOnAClosedCamera) {
  ScriptedCamera camera;
  camera.open = false;
  _ManualControlsState state = Scribbled();
  EXPECT_FALSE(camera.GetManualControlsState(state));
  EXPECT_EQ(camera.calls, Calls{"IsOpen"});
}

// Direction 0 with a size and a buffer: the value travels no further than the call.
TEST(SetManualControl, NamesTheControlByItsLowByte) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x0C, 0x05}).Holds(Text("1/250"));
  EXPECT_TRUE(camera.SetManualControl(5, "1/250"));
  EXPECT_EQ(camera.calls, (Calls{"IsOpen", "ClearCancel true", "Transfer true"}));
  camera.Expect({0xC0, 0x00, 0x0C, 0x02}).Holds(Bytes({0}));
  EXPECT_TRUE(camera.SetManualControl(0x102, ""));
  camera.Expect({0xC0, 0x00, 0x0C, 0xFF}).Holds(Bytes({'x', 0}));
  EXPECT_TRUE(camera.SetManualControl(-1, "x"));
}

TEST(SetManualControl, ReturnsTheResult) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x0C, 0x01}).Holds(Text("x")).Fails();
  EXPECT_FALSE(camera.SetManualControl(1, "x"));
}

TEST(SetManualControl, TouchesNothingOnAClosedCamera) {
  ScriptedCamera camera;
  camera.open = false;
  EXPECT_FALSE(camera.SetManualControl(1, "x"));
  EXPECT_EQ(camera.calls, Calls{"IsOpen"});
}

TEST(ManualControls, PassATransferErrorOn) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  _ManualControlsState state = Scribbled();
  camera.Expect({0xC6, 0x00, 0x07}).Asks(40).Throws("a");
  EXPECT_EQ(Thrown([&] { camera.GetManualControlsState(state); }), "CameraTransferError: Camera error: a");
  camera.Expect({0xC0, 0x00, 0x0C, 0x01}).Holds(Text("x")).Throws("b");
  EXPECT_EQ(Thrown([&] { camera.SetManualControl(1, "x"); }), "CameraTransferError: Camera error: b");
}

}  // namespace
