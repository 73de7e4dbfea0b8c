#include <gtest/gtest.h>

#include <string>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

constexpr _VscWifiType Type(int value) {
  return static_cast<_VscWifiType>(value);
}
constexpr _VscWifiAuthType Auth(int value) {
  return static_cast<_VscWifiAuthType>(value);
}

const Calls kSent = {"IsOpen", "ClearCancel true", "Transfer true"};
const Calls kAskedOnly = {"IsOpen"};
const Calls kClearedOnly = {"IsOpen", "ClearCancel true"};

TEST(SetWifiSSID, SendsThePrefixedNameWithItsNul) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x07}).Sends(Text("kelva.camera.home"));
  EXPECT_TRUE(camera.SetWifiSSID(Type(0), "home"));
  EXPECT_EQ(camera.calls, kSent);
  camera.Expect({0xC0, 0x00, 0x08}).Sends(Text("kelva.camera.home"));
  EXPECT_TRUE(camera.SetWifiSSID(Type(1), "home"));
}

TEST(SetWifiSSID, TakesNineteenCharactersAndNoMore) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x07}).Sends(Text("kelva.camera.abcdefghijklmnopqrs"));
  EXPECT_TRUE(camera.SetWifiSSID(Type(0), "abcdefghijklmnopqrs"));
  camera.calls.clear();
  EXPECT_FALSE(camera.SetWifiSSID(Type(0), "abcdefghijklmnopqrst"));
  EXPECT_EQ(camera.calls, kAskedOnly);
}

TEST(SetWifiSSID, SendsThePrefixAloneForAnEmptyName) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x08}).Sends(Text("kelva.camera."));
  EXPECT_TRUE(camera.SetWifiSSID(Type(1), ""));
}

TEST(SetWifiSSID, RefusesAnUnknownTypeAfterClearing) {
  for (const int type : {2, 3, 7, -1}) {
    ScriptedCamera camera;
    EXPECT_FALSE(camera.SetWifiSSID(Type(type), "home"));
    EXPECT_EQ(camera.calls, kClearedOnly);
  }
}

TEST(SetWifiSSID, ReturnsTheResult) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x07}).Sends(Text("kelva.camera.home")).Fails();
  EXPECT_FALSE(camera.SetWifiSSID(Type(0), "home"));
}

TEST(SetWifiPassphrase, TakesNineToSixtyThreeCharacters) {
  for (const std::size_t length : {std::size_t{9}, std::size_t{63}}) {
    ScriptedCamera camera;
    camera.Expect({0xC0, 0x00, 0x09}).Sends(Text(std::string(length, 'p')));
    EXPECT_TRUE(camera.SetWifiPassphrase(Type(0), std::string(length, 'p')));
    EXPECT_EQ(camera.calls, kSent);
    camera.Expect({0xC0, 0x00, 0x0A}).Sends(Text(std::string(length, 'p')));
    EXPECT_TRUE(camera.SetWifiPassphrase(Type(1), std::string(length, 'p')));
  }
}

// The lower bound is 9, one more than the network's own.
TEST(SetWifiPassphrase, RefusesEightAndSixtyFourCharacters) {
  for (const std::size_t length : {std::size_t{0}, std::size_t{8}, std::size_t{64}}) {
    ScriptedCamera camera;
    EXPECT_FALSE(camera.SetWifiPassphrase(Type(1), std::string(length, 'p')));
    EXPECT_EQ(camera.calls, kAskedOnly);
  }
}

TEST(SetWifiPassphrase, RefusesAnUnknownTypeAfterClearing) {
  for (const int type : {2, -1}) {
    ScriptedCamera camera;
    EXPECT_FALSE(camera.SetWifiPassphrase(Type(type), "123456789"));
    EXPECT_EQ(camera.calls, kClearedOnly);
  }
}

TEST(SetWifiPassphrase, ReturnsTheResult) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x09}).Sends(Text("123456789")).Fails();
  EXPECT_FALSE(camera.SetWifiPassphrase(Type(0), "123456789"));
}

// Direction 0 with a size and a buffer: the text travels no further than the call.
TEST(SetWifiAuthType, NamesTheTypeInACommandWithoutData) {
  const std::string texts[] = {"WPA2", "WEP", "NONE"};
  for (int auth = 0; auth < 3; ++auth) {
    ScriptedCamera camera;
    camera.Expect({0xC0, 0x00, 0x0B}).Holds(Text(texts[auth]));
    EXPECT_TRUE(camera.SetWifiAuthType(Type(1), Auth(auth)));
    EXPECT_EQ(camera.calls, kSent);
  }
}

TEST(SetWifiAuthType, PassesWepWithSizeFour) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x0B}).Holds(Bytes({'W', 'E', 'P', 0}));
  EXPECT_TRUE(camera.SetWifiAuthType(Type(1), Auth(1)));
}

TEST(SetWifiAuthType, RefusesEveryTypeButOneWithoutClearing) {
  for (const int type : {0, 2, -1}) {
    for (const int auth : {0, 1, 2, 3}) {
      ScriptedCamera camera;
      EXPECT_FALSE(camera.SetWifiAuthType(Type(type), Auth(auth)));
      EXPECT_EQ(camera.calls, kAskedOnly);
    }
  }
}

TEST(SetWifiAuthType, RefusesAnUnknownValueWithoutClearing) {
  for (const int auth : {3, -1}) {
    ScriptedCamera camera;
    EXPECT_FALSE(camera.SetWifiAuthType(Type(1), Auth(auth)));
    EXPECT_EQ(camera.calls, kAskedOnly);
  }
}

TEST(SetWifiAuthType, ReturnsTheResult) {
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x0B}).Holds(Text("NONE")).Fails();
  EXPECT_FALSE(camera.SetWifiAuthType(Type(1), Auth(2)));
}

TEST(WifiCommands, TouchNothingOnAClosedCamera) {
  ScriptedCamera camera;
  camera.open = false;
  EXPECT_FALSE(camera.SetWifiSSID(Type(0), "home"));
  EXPECT_FALSE(camera.SetWifiPassphrase(Type(0), "123456789"));
  EXPECT_FALSE(camera.SetWifiAuthType(Type(1), Auth(0)));
  EXPECT_EQ(camera.calls, (Calls{"IsOpen", "IsOpen", "IsOpen"}));
}

TEST(WifiCommands, PassATransferErrorOn) {
  const ExceptionsOff off;
  ScriptedCamera camera;
  camera.Expect({0xC0, 0x00, 0x07}).Sends(Text("kelva.camera.")).Throws("a");
  EXPECT_EQ(Thrown([&] { camera.SetWifiSSID(Type(0), ""); }), "CameraTransferError: Camera error: a");
  camera.Expect({0xC0, 0x00, 0x09}).Sends(Text("123456789")).Throws("b");
  EXPECT_EQ(Thrown([&] { camera.SetWifiPassphrase(Type(0), "123456789"); }), "CameraTransferError: Camera error: b");
  camera.Expect({0xC0, 0x00, 0x0B}).Holds(Text("WPA2")).Throws("c");
  EXPECT_EQ(Thrown([&] { camera.SetWifiAuthType(Type(1), Auth(0)); }), "CameraTransferError: Camera error: c");
}

}  // namespace
