#include <gmock/gmock.h>

#include <random>

#include "base/testing/RandomSeed.h"
#include "vcam/camera/testing/TestSupport.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

using test::Ask;
using test::ScratchStorage;
using test::SendText;
using test::Tell;

TEST(Dispatch, KnowsSevenOperations) {
  const ScratchStorage scratch;
  VirtualCamera camera(scratch.CameraOptions());
  for (int code = 0; code < 256; ++code) {
    const bool isVendor = code >= 0xC0 && code <= 0xC6;
    const wire::Reply reply = camera.Execute(test::Block({static_cast<std::uint8_t>(code), 1}));
    EXPECT_EQ(reply.sense, isVendor ? sense::kBadCommandField : sense::kUnknownOperation) << code;
  }
}

TEST(Dispatch, AnswersQueriesWhileItBoots) {
  const ScratchStorage scratch;
  VirtualCamera camera(scratch.CameraOptions());
  ASSERT_TRUE(Tell(camera, {0xC0, 0, 0x03}).Good());
  for (std::uint8_t query = 1; query <= 7; ++query) {
    EXPECT_TRUE(Ask(camera, {0xC6, 0, query}, 40).Good()) << int{query};
  }
  EXPECT_EQ(Ask(camera, {0xC6, 0, 0x00}, 4).sense, sense::kBecomingReady);
  EXPECT_EQ(SendText(camera, {0xC0, 0, 0xFF}, "x").sense, sense::kBecomingReady);
}

TEST(Dispatch, SurvivesSeededNonsense) {
  const ScratchStorage scratch;
  const ScratchStorage outside;
  outside.Put("sentinel", "untouched");
  scratch.Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
  Options options = scratch.CameraOptions();
  options.bootTime = options.upgradeTime = std::chrono::milliseconds(0);
  VirtualCamera camera(options);
  std::mt19937 random(base::RandomSeed());
  for (int i = 0; i < 20'000; ++i) {
    wire::Command command;
    for (std::uint8_t& byte : command.cdb) byte = static_cast<std::uint8_t>(random() % 3 == 0 ? random() : 0);
    command.cdb[0] = static_cast<std::uint8_t>(0xC0 + random() % 7);
    command.cdb[1] = 0;
    command.cdb[2] = static_cast<std::uint8_t>(random() % 16);
    if (command.cdb[0] == 0xC0 && command.cdb[2] == 0) {
      command.cdb[2] = 1;  // captures only fill the folder
    }
    command.direction = static_cast<wire::Direction>(random() % 3);
    base::Bytes data(random() % 64);
    for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(random() % 128);
    command.length = static_cast<std::uint32_t>(data.size());
    if (command.direction == wire::Direction::kToCamera) command.data = data;
    const wire::Reply reply = camera.Execute(command);
    EXPECT_EQ(reply.transport, wire::Transport::kOk);
    EXPECT_LE(reply.data.size(), command.length);
    EXPECT_LE(reply.moved, command.length);
  }
  EXPECT_EQ(outside.Get("sentinel"), "untouched");
}

}  // namespace
}  // namespace vcam
