#include "vcam/usbip/Messages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace vcam::usbip {
namespace {

using ::testing::ElementsAre;

constexpr std::uint32_t kDevice = 0x00010002;

// A transfer of 18 bytes from the device over endpoint 0: the kernel's question for the device descriptor.
base::Bytes AskDescriptor() {
  return {0, 0, 0, 1,  0, 0, 0, 9, 0, 1, 0, 2, 0, 0, 0, 1, 0,    0, 0, 0, 0, 0, 2,  0,
          0, 0, 0, 18, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x80, 6, 0, 1, 0, 0, 18, 0};
}

// A transfer of three bytes to the device over endpoint 2.
base::Bytes SendThree() {
  return {0, 0, 0, 1, 0, 0, 0,    10,   0,    1,    0, 2, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0,
          0, 3, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7, 8, 9};
}

base::Bytes TakeBack() {
  base::Bytes bytes(48, 0);
  bytes[3] = 2;
  bytes[7] = 11;
  bytes[9] = 1;
  bytes[11] = 2;
  bytes[23] = 10;
  return bytes;
}

void ExpectRefused(base::Bytes bytes) {
  MessageReader reader(kDevice);
  reader.Feed(bytes);
  EXPECT_THROW(reader.Next(), ProtocolError);
}

TEST(MessageReader, ReadsATransferFromTheDevice) {
  MessageReader reader(kDevice);
  reader.Feed(AskDescriptor());
  const auto message = reader.Next();
  ASSERT_TRUE(message.has_value());
  const auto& submit = std::get<Submit>(*message);
  EXPECT_EQ(submit.sequence, 9U);
  EXPECT_EQ(submit.endpoint, 0);
  EXPECT_TRUE(submit.in);
  EXPECT_EQ(submit.length, 18U);
  EXPECT_THAT(submit.setup, ElementsAre(0x80, 6, 0, 1, 0, 0, 18, 0));
  EXPECT_TRUE(submit.data.empty());
  EXPECT_FALSE(reader.Next().has_value());
}

TEST(MessageReader, WaitsForEveryByteOfATransferToTheDevice) {
  MessageReader reader(kDevice);
  const base::Bytes whole = SendThree();
  for (std::size_t i = 0; i + 1 < whole.size(); ++i) {
    reader.Feed(std::span(whole).subspan(i, 1));
    ASSERT_FALSE(reader.Next().has_value()) << "after byte " << i;
  }
  reader.Feed(std::span(whole).last(1));
  const auto message = reader.Next();
  ASSERT_TRUE(message.has_value());
  EXPECT_THAT(std::get<Submit>(*message).data, ElementsAre(7, 8, 9));
}

TEST(MessageReader, ReadsSeveralMessagesOfOneArrival) {
  base::Bytes both = SendThree();
  const base::Bytes second = TakeBack();
  both.insert(both.end(), second.begin(), second.end());
  MessageReader reader(kDevice);
  reader.Feed(both);
  EXPECT_TRUE(std::holds_alternative<Submit>(reader.Next().value()));
  const auto unlink = std::get<Unlink>(reader.Next().value());
  EXPECT_EQ(unlink.sequence, 11U);
  EXPECT_EQ(unlink.target, 10U);
}

TEST(MessageReader, RefusesAnUnknownCommand) {
  base::Bytes bytes = AskDescriptor();
  bytes[3] = 3;
  ExpectRefused(bytes);
}

TEST(MessageReader, RefusesAnotherDevicesNumber) {
  base::Bytes bytes = AskDescriptor();
  bytes[11] = 3;
  ExpectRefused(bytes);
}

TEST(MessageReader, RefusesADirectionThatIsNeitherInNorOut) {
  base::Bytes bytes = AskDescriptor();
  bytes[15] = 2;
  ExpectRefused(bytes);
}

TEST(MessageReader, RefusesAnEndpointAbove15) {
  base::Bytes bytes = AskDescriptor();
  bytes[19] = 16;
  ExpectRefused(bytes);
}

TEST(MessageReader, RefusesALengthThatItWouldHaveToWaitForAndStore) {
  base::Bytes bytes = SendThree();
  bytes[24] = 0x7F;
  ExpectRefused(bytes);
}

TEST(MessageReader, RefusesIsochronousPackets) {
  base::Bytes bytes = AskDescriptor();
  bytes[35] = 1;
  ExpectRefused(bytes);
}

TEST(Encode, AnswersATransferWithStatusAndCount) {
  const Header header = EncodeSubmitted(0x01020304, kUrbStall, 0x1000);
  EXPECT_THAT(std::span(header).first(28), ElementsAre(0, 0, 0, 3, 1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF,
                                                       0xFF, 0xFF, 0xE0, 0, 0, 0x10, 0));
  EXPECT_TRUE(std::all_of(header.begin() + 28, header.end(), [](std::uint8_t byte) { return byte == 0; }));
}

TEST(Encode, AnswersATakenBackTransfer) {
  const Header header = EncodeUnlinked(11, kUrbUnlinked);
  EXPECT_THAT(std::span(header).first(24),
              ElementsAre(0, 0, 0, 4, 0, 0, 0, 11, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0x98));
}

}  // namespace
}  // namespace vcam::usbip
