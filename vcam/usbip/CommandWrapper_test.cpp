#include "vcam/usbip/CommandWrapper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vcam::usbip {
namespace {

using ::testing::ElementsAre;

// The kernel's INQUIRY: tag 7, 36 bytes from the device, unit 0, six bytes of command.
base::Bytes Inquiry() {
  return {'U', 'S', 'B', 'C', 7, 0, 0, 0, 36, 0, 0, 0, 0x80, 0, 6, 0x12, 0, 0, 0, 36, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
}

TEST(DecodeCommand, ReadsTheKernelsInquiry) {
  const auto command = DecodeCommand(Inquiry());
  ASSERT_TRUE(command.has_value());
  EXPECT_EQ(command->tag, 7U);
  EXPECT_EQ(command->length, 36U);
  EXPECT_EQ(command->direction, wire::Direction::kFromCamera);
  EXPECT_THAT(command->cdb, ElementsAre(0x12, 0, 0, 0, 36, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(DecodeCommand, ZeroesTheBlockBehindItsLength) {
  base::Bytes bytes = Inquiry();
  bytes[14] = 1;
  EXPECT_THAT(DecodeCommand(bytes).value().cdb, ElementsAre(0x12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(DecodeCommand, HasNoDirectionWithoutData) {
  base::Bytes bytes = Inquiry();
  bytes[8] = 0;
  EXPECT_EQ(DecodeCommand(bytes).value().direction, wire::Direction::kNone);
}

TEST(DecodeCommand, ReadsTheDirectionToTheCamera) {
  base::Bytes bytes = Inquiry();
  bytes[12] = 0;
  EXPECT_EQ(DecodeCommand(bytes).value().direction, wire::Direction::kToCamera);
}

TEST(DecodeCommand, RefusesAnotherSize) {
  base::Bytes bytes = Inquiry();
  bytes.push_back(0);
  EXPECT_FALSE(DecodeCommand(bytes).has_value());
  bytes.resize(30);
  EXPECT_FALSE(DecodeCommand(bytes).has_value());
  EXPECT_FALSE(DecodeCommand({}).has_value());
}

TEST(DecodeCommand, RefusesWhatIsNotMeaningful) {
  for (const auto& [offset, value] : {std::pair{0, 'X'}, {12, 0x81}, {13, 1}, {14, 0}, {14, 17}, {14, 0x46}}) {
    base::Bytes bytes = Inquiry();
    bytes[static_cast<std::size_t>(offset)] = static_cast<std::uint8_t>(value);
    EXPECT_FALSE(DecodeCommand(bytes).has_value()) << "byte " << offset << " = " << value;
  }
}

TEST(EncodeStatus, FillsThirteenBytes) {
  EXPECT_THAT(EncodeStatus({0x01020304, 0x10, WrapperStatus::kFailed}),
              ElementsAre('U', 'S', 'B', 'S', 4, 3, 2, 1, 0x10, 0, 0, 0, 1));
}

}  // namespace
}  // namespace vcam::usbip
