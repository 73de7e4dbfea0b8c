#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

std::vector<_Sha1obj> Raw(const std::string& bundle, int announced = 1) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x07}).Sends(Text("key"));
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({announced, 0, 0, 0});
  camera.Expect({0xC4, 0x00, 0x00, 0, 0, 0, 0}).Asks(65536).Answers(bundle);
  return camera.ReadCompressedRaw("key", nullptr, nullptr, true);
}

TEST(ReadCompressedRaw, GivesBothPartsUnderTheKey) {
  const std::vector<_Sha1obj> parts = Raw(Bytes({2, 0, 0, 0, 3, 0, 0, 0}) + "AABBB");
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(parts[0].name, "key");
  EXPECT_EQ(parts[0].size, 2u);
  EXPECT_EQ(ToString(parts[0].data), "AA");
  EXPECT_EQ(parts[1].name, "key");
  EXPECT_EQ(parts[1].size, 3u);
  EXPECT_EQ(ToString(parts[1].data), "BBB");
}

TEST(ReadCompressedRaw, LeavesAnEmptyPartOut) {
  const std::vector<_Sha1obj> second = Raw(Bytes({0, 0, 0, 0, 100, 0, 0, 0}) + std::string(100, 'B'));
  ASSERT_EQ(second.size(), 1u);
  EXPECT_EQ(second[0].name, "key");
  EXPECT_EQ(second[0].size, 100u);
  EXPECT_EQ(second[0].data.size(), 100u);
  const std::vector<_Sha1obj> first = Raw(Bytes({1, 0, 0, 0, 0, 0, 0, 0}) + "A");
  ASSERT_EQ(first.size(), 1u);
  EXPECT_EQ(ToString(first[0].data), "A");
  EXPECT_TRUE(Raw(Bytes({0, 0, 0, 0, 0, 0, 0, 0})).empty());
}

TEST(ReadCompressedRaw, OfAnotherLengthThanItsPartsIsEmptyWithoutMessage) {
  EXPECT_TRUE(Raw(Bytes({0, 0, 0, 0, 100, 0, 0, 0}) + std::string(101, 'B')).empty());
  EXPECT_TRUE(Raw(Bytes({0, 0, 0, 0, 100, 0, 0, 0}) + std::string(99, 'B')).empty());
}

TEST(ReadCompressedRaw, AddsThePartsWithoutWrapping) {
  EXPECT_TRUE(Raw(Bytes({0xFF, 0xFF, 0xFF, 0xFF, 5, 0, 0, 0}) + "AAAA").empty());
  EXPECT_TRUE(Raw(Bytes({0xF8, 0xFF, 0xFF, 0xFF, 8, 0, 0, 0})).empty());
}

TEST(ReadCompressedRaw, OfFewerThanEightBytesIsEmpty) {
  for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{4}, std::size_t{7}}) {
    EXPECT_TRUE(Raw(std::string(length, '\0')).empty());
  }
}

TEST(ReadCompressedRaw, DoesNotCompareTheLengthWithTheAnnouncedTotal) {
  const std::string bundle = Bytes({2, 0, 0, 0, 0, 0, 0, 0}) + "AA";
  EXPECT_EQ(Raw(bundle, 1).size(), 1u);
  EXPECT_EQ(Raw(bundle, 255).size(), 1u);
}

TEST(ReadCompressedRaw, SendsItsCommandsInOrderWithItsFlag) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x07}).Sends(Bytes({'k', 0})).Flag(false);
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({8, 0, 0, 0}).Flag(false);
  camera.Expect({0xC4, 0x00, 0x00}).Asks(65536).Answers(std::string(8, '\0')).Flag(false);
  camera.ReadCompressedRaw("k", nullptr, nullptr, false);
  EXPECT_EQ(camera.calls, (Calls{"IsOpen", "ClearCancel false", "Transfer false", "Transfer false", "Transfer false"}));
}

TEST(ReadCompressedRaw, TouchesNothingOnAClosedCamera) {
  ScriptedCamera camera;
  camera.open = false;
  EXPECT_TRUE(camera.ReadCompressedRaw("k", nullptr, nullptr, true).empty());
  EXPECT_EQ(camera.calls, Calls{"IsOpen"});
}

TEST(ReadCompressedRaw, IsEmptyWhenACommandFails) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x07}).Sends(Text("k")).Fails();
  EXPECT_TRUE(camera.ReadCompressedRaw("k", nullptr, nullptr, true).empty());
  camera.Expect({0xC2, 0x00, 0x07}).Sends(Text("k"));
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({0, 0, 0, 0});
  EXPECT_TRUE(camera.ReadCompressedRaw("k", nullptr, nullptr, true).empty());
  camera.Expect({0xC2, 0x00, 0x07}).Sends(Text("k"));
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Fails();
  EXPECT_TRUE(camera.ReadCompressedRaw("k", nullptr, nullptr, true).empty());
  camera.Expect({0xC2, 0x00, 0x07}).Sends(Text("k"));
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({8, 0, 0, 0});
  camera.Expect({0xC4}).Asks(65536).Throws("gone");
  const ExceptionsOff off;
  EXPECT_EQ(Thrown([&] { camera.ReadCompressedRaw("k", nullptr, nullptr, true); }),
            "CameraTransferError: Camera error: gone");
}

}  // namespace
