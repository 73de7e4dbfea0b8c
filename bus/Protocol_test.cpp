#include "bus/Protocol.h"

#include <gmock/gmock.h>

namespace bus {
namespace {

// A command with two bytes for the camera, announced as three.
const base::Bytes kCommandBytes{1, 0xC5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x99, 3, 0, 0, 0, 'a', 'b'};
const base::Bytes kReplyBytes{3, 2, 5, 0x14, 1, 7, 0, 0, 0, 'x', 'y'};
const base::Bytes kPlugBytes{1, 0, 'K', 2, 0, '/', 's', 0, 0, 0, 0, 5, 7, 0x78, 0x56, 0x34, 0x12};
const base::Bytes kFaultBytes{1, 0, 'K', 4, 0, 'f', 'a', 'i', 'l', 9, 0, 0, 0, 0, 0, 0, 0};
const base::Bytes kErrorBytes{3, 2, 0, 'n', 'o'};
const base::Bytes kStatusBytes{9, 0, 0,   0, 1, 0, 'K', 1, 0, 'v', 1, 0, 'p', 1, 0, 'r',
                               1, 0, '/', 5, 7, 0, 0,   0, 8, 0,   0, 0, 0,   0, 0, 0};

TEST(Wire, SaysACommand) {
  const auto command = Decode<wire::Command>(kCommandBytes);
  ASSERT_TRUE(command);
  EXPECT_EQ(command->direction, wire::Direction::kToCamera);
  EXPECT_EQ(command->cdb[0], 0xC5);
  EXPECT_EQ(command->cdb[15], 0x99);
  EXPECT_EQ(command->length, 3U);
  EXPECT_EQ(base::Bytes(command->data.begin(), command->data.end()), (base::Bytes{'a', 'b'}));
  EXPECT_EQ(Encode(*command), kCommandBytes);
}

TEST(Wire, RefusesACommandThatIsNone) {
  base::Bytes bytes = kCommandBytes;
  bytes[0] = 2;
  EXPECT_FALSE(Decode<wire::Command>(bytes)) << "data with a direction from the camera";
  bytes[0] = 3;
  EXPECT_FALSE(Decode<wire::Command>(bytes)) << "no such direction";
  bytes = kCommandBytes;
  bytes[17] = 1;
  EXPECT_FALSE(Decode<wire::Command>(bytes)) << "more data than announced";
  for (std::size_t length = 0; length < 21; ++length) {
    EXPECT_FALSE(Decode<wire::Command>(std::span(kCommandBytes).first(length)));
  }
}

TEST(Wire, SaysAReply) {
  const auto reply = Decode<wire::Reply>(kReplyBytes);
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->transport, wire::Transport::kGone);
  EXPECT_EQ(reply->status, 2);
  EXPECT_EQ(reply->sense, (wire::Sense{5, 0x14, 1}));
  EXPECT_EQ(reply->moved, 7U);
  EXPECT_EQ(reply->data, (base::Bytes{'x', 'y'}));
  EXPECT_EQ(Encode(*reply), kReplyBytes);
  base::Bytes bytes = kReplyBytes;
  bytes[0] = 4;
  EXPECT_FALSE(Decode<wire::Reply>(bytes));
  EXPECT_FALSE(Decode<wire::Reply>(std::span(kReplyBytes).first(8)));
}

TEST(Wire, SaysAPlug) {
  const auto plug = Decode<PlugRequest>(kPlugBytes);
  ASSERT_TRUE(plug);
  EXPECT_EQ(plug->serial, "K");
  EXPECT_EQ(plug->storage, "/s");
  EXPECT_EQ(plug->peripheralType, 5);
  EXPECT_EQ(plug->traits, kForwardOnly | kWithoutKeys | kOpaque);
  EXPECT_EQ(plug->seed, 0x12345678U);
  EXPECT_EQ(Encode(*plug), kPlugBytes);
  base::Bytes bytes = kPlugBytes;
  bytes[12] = 8;
  EXPECT_FALSE(Decode<PlugRequest>(bytes)) << "no such trait";
}

TEST(Wire, SaysAFault) {
  const auto fault = Decode<FaultRequest>(kFaultBytes);
  ASSERT_TRUE(fault);
  EXPECT_EQ(fault->name, "fail");
  EXPECT_EQ(fault->at, 9U);
  EXPECT_EQ(Encode(*fault), kFaultBytes);
}

TEST(Wire, SaysAnError) {
  const auto error = Decode<ErrorAnswer>(kErrorBytes);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code, ErrorCode::kNoSuchCamera);
  EXPECT_EQ(error->sentence, "no");
  EXPECT_EQ(Encode(*error), kErrorBytes);
  EXPECT_FALSE(Decode<ErrorAnswer>(base::Bytes{2, 0, 0})) << "no such code";
}

TEST(Wire, SaysTheStatusOfACamera) {
  const auto status = Decode<CameraStatus>(kStatusBytes);
  ASSERT_TRUE(status);
  EXPECT_EQ(status->id, 9U);
  EXPECT_EQ(status->storage, "/");
  EXPECT_EQ(status->peripheralType, 5);
  EXPECT_EQ(status->holder, 7U);
  EXPECT_EQ(status->commands, 8U);
  EXPECT_EQ(Encode(*status), kStatusBytes);
}

TEST(Wire, SaysAListOfCameras) {
  base::Bytes bytes{2, 0, 0, 0};
  for (int i = 0; i < 2; ++i) bytes.insert(bytes.end(), kStatusBytes.begin(), kStatusBytes.end());
  const auto list = Decode<std::vector<CameraStatus>>(bytes);
  ASSERT_TRUE(list);
  EXPECT_EQ(list->size(), 2U);
  EXPECT_EQ(Encode(*list), bytes);
  bytes[0] = 1;
  EXPECT_FALSE(Decode<std::vector<CameraStatus>>(bytes)) << "bytes that the count does not cover";
  EXPECT_FALSE(Decode<std::vector<CameraStatus>>(base::Bytes{0xFF, 0xFF, 0xFF, 0xFF})) << "a count without bytes";
}

TEST(Wire, TakesNothingThatIsTooShortOrTooLong) {
  for (std::size_t length = 0; length < kPlugBytes.size(); ++length) {
    EXPECT_FALSE(Decode<PlugRequest>(std::span(kPlugBytes).first(length)));
  }
  for (std::size_t length = 0; length < kFaultBytes.size(); ++length) {
    EXPECT_FALSE(Decode<FaultRequest>(std::span(kFaultBytes).first(length)));
  }
  for (std::size_t length = 0; length < kStatusBytes.size(); ++length) {
    EXPECT_FALSE(Decode<CameraStatus>(std::span(kStatusBytes).first(length)));
  }
  for (base::Bytes bytes : {kPlugBytes, kFaultBytes, kStatusBytes, kErrorBytes}) {
    bytes.push_back(0);
    EXPECT_FALSE(Decode<PlugRequest>(bytes));
    EXPECT_FALSE(Decode<FaultRequest>(bytes));
    EXPECT_FALSE(Decode<CameraStatus>(bytes));
    EXPECT_FALSE(Decode<ErrorAnswer>(bytes));
  }
}

TEST(Wire, BoundsTexts) {
  base::Bytes bytes{0x01, 0x10};  // 4,097 bytes
  bytes.resize(2 + 4097, 'x');
  EXPECT_FALSE(Decode<std::string>(bytes));
  EXPECT_EQ(EncodeText(std::string(5000, 'x')).size(), 2U + 4096U);
  EXPECT_EQ(Decode<std::string>(base::Bytes{2, 0, 'h', 'i'}), "hi");
}

TEST(Wire, FramesAPayload) {
  EXPECT_EQ(EncodeFrame(Kind::kUnplug, 42, EncodeText("K")), (base::Bytes{8, 0, 0, 0, 4, 42, 0, 0, 0, 1, 0, 'K'}));
  EXPECT_EQ(EncodeFrame(Kind::kOk, 1, EncodeNumber(258)), (base::Bytes{9, 0, 0, 0, 0x40, 1, 0, 0, 0, 2, 1, 0, 0}));
}

}  // namespace
}  // namespace bus
