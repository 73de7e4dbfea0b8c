#include "vcam/camera/VirtualCamera.h"

#include <gmock/gmock.h>

#include "vcam/camera/testing/TestSupport.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

using test::Ask;
using test::AsText;
using test::Block;
using test::ScratchStorage;
using test::Send;
using test::SendText;
using test::Tell;

TEST(VirtualCamera, AnswersThatItIsReady) {
  const ScratchStorage storage;
  VirtualCamera camera(storage.CameraOptions());
  const wire::Reply reply = Ask(camera, {0xC6, 0, 0x04}, 4);
  EXPECT_TRUE(reply.Good());
  EXPECT_EQ(reply.data, (base::Bytes{1, 0, 0, 0}));
  EXPECT_EQ(reply.moved, 4U);
}

TEST(VirtualCamera, ReadsAFileInChunksByPath) {
  const ScratchStorage storage;
  storage.Put("DCIM/100ABCDE/IMG_0001.JPG", "0123456789");
  VirtualCamera camera(storage.CameraOptions());
  ASSERT_TRUE(SendText(camera, {0xC2, 0, 0x01}, R"(I:\DCIM\100ABCDE\IMG_0001.JPG)").Good());
  EXPECT_EQ(Ask(camera, {0xC6, 0, 0}, 4).data, (base::Bytes{10, 0, 0, 0}));
  EXPECT_EQ(AsText(Ask(camera, {0xC4, 0, 0x01, 0}, 8).data), "01234567");
  EXPECT_EQ(AsText(Ask(camera, {0xC4, 0, 0x01, 8}, 8).data), "89");
  EXPECT_TRUE(Ask(camera, {0xC4, 0, 0x01, 10}, 8).data.empty());
  EXPECT_EQ(Ask(camera, {0xC4, 0, 0x01, 11}, 8).sense, sense::kOutOfRange);
}

TEST(VirtualCamera, WritesAFileInChunks) {
  const ScratchStorage storage;
  storage.Put("A.TXT", "longer than what comes");
  VirtualCamera camera(storage.CameraOptions());
  ASSERT_TRUE(SendText(camera, {0xC2, 0, 0x01, 0x01}, R"(I:\A.TXT)").Good());
  EXPECT_EQ(Send(camera, {0xC5, 0, 0}, {'a', 'b'}).moved, 2U);
  EXPECT_TRUE(Send(camera, {0xC5, 0, 2}, {'c'}).Good());
  EXPECT_TRUE(Tell(camera, {0xC3}).Good());
  EXPECT_EQ(storage.Get("A.TXT"), "abc");
}

TEST(VirtualCamera, CountsCommandsThatEndedWell) {
  const ScratchStorage storage;
  VirtualCamera camera(storage.CameraOptions());
  EXPECT_EQ(Ask(camera, {0xC6, 0, 0x05}, 4).data, (base::Bytes{0, 0, 0, 0}));
  EXPECT_FALSE(Tell(camera, {0xC9}).Good());
  EXPECT_EQ(Ask(camera, {0xC6, 0, 0x05}, 4).data, (base::Bytes{1, 0, 0, 0}));
}

TEST(VirtualCamera, CarriesNoDataWhenTheDirectionIsNone) {
  const ScratchStorage storage;
  VirtualCamera camera(storage.CameraOptions());
  wire::Command command = Block({0xC6, 0, 0x04});
  command.length = 4;
  const wire::Reply reply = camera.Execute(command);
  EXPECT_TRUE(reply.Good());
  EXPECT_TRUE(reply.data.empty());
  EXPECT_EQ(reply.moved, 0U);
}

TEST(VirtualCamera, RefusesWhatItDoesNotKnow) {
  const ScratchStorage storage;
  VirtualCamera camera(storage.CameraOptions());
  EXPECT_EQ(Tell(camera, {0x12}).sense, sense::kUnknownOperation);
  EXPECT_EQ(Tell(camera, {0xC7}).sense, sense::kUnknownOperation);
  EXPECT_EQ(Tell(camera, {0xC0, 0, 0x0E}).sense, sense::kBadCommandField);
  EXPECT_EQ(Ask(camera, {0xC6, 0, 0x08}, 4).sense, sense::kBadCommandField);
  EXPECT_EQ(Ask(camera, {0xC6, 1, 0x04}, 4).sense, sense::kBadCommandField);
  EXPECT_EQ(Ask(camera, {0xC4, 0, 0x01}, 4).sense, sense::kWrongSequence);
  EXPECT_EQ(Ask(camera, {0xC6, 0, 0x00}, 4).sense, sense::kWrongSequence);
}

TEST(VirtualCamera, RefusesATransferThatIsTooLong) {
  const ScratchStorage storage;
  VirtualCamera camera(storage.CameraOptions());
  EXPECT_EQ(Ask(camera, {0xC6, 0, 0x04}, wire::kMaxTransferLength + 1).sense, sense::kBadCommandField);
  EXPECT_EQ(Ask(camera, {0xC6, 0, 0x04}, 0xFFFFFFFF).sense, sense::kBadCommandField);
}

TEST(VirtualCamera, AnswersNothingOnceItIsUnplugged) {
  const ScratchStorage storage;
  VirtualCamera camera(storage.CameraOptions());
  camera.Unplug();
  EXPECT_EQ(Ask(camera, {0xC6, 0, 0x04}, 4).transport, wire::Transport::kGone);
  EXPECT_TRUE(camera.Gone());
}

TEST(VirtualCamera, SaysWhyItsStorageCannotBeUsed) {
  Options options;
  options.storage = "/nonexistent/folder";
  try {
    VirtualCamera camera(options);
    FAIL() << "a camera without storage";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("/nonexistent/folder"));
  }
}

TEST(VirtualCamera, DescribesItselfAsInquiryData) {
  const ScratchStorage storage;
  Options options = storage.CameraOptions();
  options.revision = "Q42";
  options.peripheralType = 5;
  const VirtualCamera camera(options);
  const auto data = camera.InquiryData();
  EXPECT_EQ(std::string(data.begin() + 8, data.end()), "Kelva   Camera          Q42 ");
  EXPECT_EQ(base::Bytes(data.begin(), data.begin() + 8), (base::Bytes{5, 0x80, 4, 2, 31, 0, 0, 0}));
}

}  // namespace
}  // namespace vcam
