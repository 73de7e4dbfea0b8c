#include "vcam/usbip/ScsiUnit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Bytes.h"

namespace vcam::usbip {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr ScsiUnit::Inquiry kInquiryData{3,   0x80, 4,   2,   31,  0,   0,   0,   'K', 'e', 'l', 'v',
                                         'a', ' ',  ' ', ' ', 'C', 'a', 'm', 'e', 'r', 'a', ' ', ' ',
                                         ' ', ' ',  ' ', ' ', ' ', ' ', ' ', ' ', '1', '.', '0', '0'};

// A camera that answers from a script and notes what it was asked.
class ScsiUnitTest : public ::testing::Test {
 protected:
  static wire::Command From(std::array<std::uint8_t, 16> cdb, std::uint32_t length) {
    return {cdb, length == 0 ? wire::Direction::kNone : wire::Direction::kFromCamera, length, {}};
  }
  static wire::Reply With(base::Bytes data) {
    wire::Reply reply;
    reply.moved = static_cast<std::uint32_t>(data.size());
    reply.data = std::move(data);
    return reply;
  }
  wire::Reply Ask(std::array<std::uint8_t, 16> cdb, std::uint32_t length) { return unit_.Run(From(cdb, length)); }
  base::Bytes LastSense() { return Ask({0x03, 0, 0, 0, 18}, 18).data; }
  void Select(std::uint8_t what) {
    next_ = wire::Reply{};
    Ask({0xC2, 0, what}, 0);
  }
  void ExpectRefused(const wire::Reply& reply, wire::Sense sense) {
    EXPECT_EQ(reply.status, wire::kScsiCheckCondition);
    EXPECT_EQ(reply.sense, sense);
    EXPECT_THAT(LastSense(),
                ElementsAre(0x70, 0, sense.key, 0, 0, 0, 0, 10, 0, 0, 0, 0, sense.asc, sense.ascq, 0, 0, 0, 0));
  }

  std::vector<wire::Command> asked_;
  wire::Reply next_;
  ScsiUnit unit_{kInquiryData, "A7", [this](const wire::Command& command) {
                   asked_.push_back(command);
                   return next_;
                 }};
};

TEST_F(ScsiUnitTest, TellsItsInquiryData) {
  EXPECT_THAT(Ask({0x12, 0, 0, 0, 36}, 36).data, ElementsAreArray(kInquiryData));
  EXPECT_THAT(Ask({0x12, 0, 0, 0, 5}, 36).data, ElementsAre(3, 0x80, 4, 2, 31));
  EXPECT_THAT(asked_, IsEmpty());
}

TEST_F(ScsiUnitTest, TellsItsSerialNumberAsVitalProductData) {
  EXPECT_THAT(Ask({0x12, 1, 0x80, 0, 255}, 255).data, ElementsAre(3, 0x80, 0, 2, 'A', '7'));
  EXPECT_THAT(Ask({0x12, 1, 0x00, 0, 255}, 255).data, ElementsAre(3, 0x00, 0, 2, 0x00, 0x80));
}

TEST_F(ScsiUnitTest, RefusesUnknownVitalProductData) {
  ExpectRefused(Ask({0x12, 1, 0x83, 0, 255}, 255), {5, 0x24, 0});
}

TEST_F(ScsiUnitTest, HasNoMediumBeforeAnythingIsSelected) {
  ExpectRefused(Ask({0x00}, 0), {2, 0x3A, 0});
  ExpectRefused(Ask({0x25}, 8), {2, 0x3A, 0});
  ExpectRefused(Ask({0x28, 0, 0, 0, 0, 0, 0, 0, 1}, 512), {2, 0x3A, 0});
}

TEST_F(ScsiUnitTest, IsReadyOnceSomethingIsSelected) {
  Select(0x01);
  EXPECT_TRUE(Ask({0x00}, 0).Good());
}

TEST_F(ScsiUnitTest, GivesTheReasonOfARefusalOnce) {
  Ask({0x35}, 0);
  EXPECT_EQ(LastSense().at(2), 5);
  EXPECT_EQ(LastSense().at(2), 0);
}

TEST_F(ScsiUnitTest, RefusesWhatItDoesNotKnow) {
  ExpectRefused(Ask({0x43}, 12), {5, 0x20, 0});
  ExpectRefused(Ask({0xC7}, 0), {5, 0x20, 0});
  ExpectRefused(Ask({0xBF}, 0), {5, 0x20, 0});
}

TEST_F(ScsiUnitTest, RefusesToBeWrittenAsADisk) {
  ExpectRefused(Ask({0x2A, 0, 0, 0, 0, 0, 0, 0, 1}, 512), {7, 0x27, 0});
}

TEST_F(ScsiUnitTest, HasNoModePages) {
  EXPECT_THAT(Ask({0x1A, 0, 0x3F, 0, 192}, 192).data, ElementsAre(3, 0, 0x80, 0));
  EXPECT_THAT(Ask({0x5A, 0, 0x3F, 0, 0, 0, 0, 0, 8}, 8).data, ElementsAre(0, 6, 0, 0x80, 0, 0, 0, 0));
  ExpectRefused(Ask({0x1A, 0, 0x08, 0, 192}, 192), {5, 0x24, 0});
}

TEST_F(ScsiUnitTest, PassesTheCamerasOwnCommandsOnUnchanged) {
  next_ = With({0x2A, 0, 0, 0});
  EXPECT_THAT(Ask({0xC6, 0, 4}, 4).data, ElementsAre(0x2A, 0, 0, 0));
  ASSERT_EQ(asked_.size(), 1U);
  EXPECT_THAT(asked_[0].cdb, ElementsAre(0xC6, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(asked_[0].length, 4U);
}

TEST_F(ScsiUnitTest, KeepsTheCamerasReasonForARefusal) {
  next_ = wire::Reply{wire::Transport::kOk, wire::kScsiCheckCondition, {3, 0x11, 0}, {}, 0, {}};
  ExpectRefused(Ask({0xC4, 0, 1}, 16), {3, 0x11, 0});
}

TEST_F(ScsiUnitTest, CapacityIsTheSelectedDataInWholeBlocks) {
  Select(0x01);
  next_ = With({0x01, 0x04, 0, 0});  // 1025 bytes
  EXPECT_THAT(Ask({0x25}, 8).data, ElementsAre(0, 0, 0, 2, 0, 0, 2, 0));
}

TEST_F(ScsiUnitTest, AnEmptyDataSetIsNoMedium) {
  Select(0x01);
  next_ = With({0, 0, 0, 0});
  ExpectRefused(Ask({0x25}, 8), {2, 0x3A, 0});
}

TEST_F(ScsiUnitTest, ReadsBlocksAsChunksOfTheSelectedData) {
  Select(0x01);
  next_ = With(base::Bytes(1024, 0x55));
  EXPECT_EQ(Ask({0x28, 0, 0, 0, 0, 3, 0, 0, 2}, 1024).data, base::Bytes(1024, 0x55));
  EXPECT_THAT(asked_.back().cdb, ElementsAre(0xC4, 0, 1, 0x00, 0x06, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(asked_.back().length, 1024U);
}

TEST_F(ScsiUnitTest, ReadsBundlesWithTheirOwnSubCode) {
  Select(0x05);
  next_ = With(base::Bytes(512, 1));
  Ask({0x28, 0, 0, 0, 0, 0, 0, 0, 1}, 512);
  EXPECT_EQ(asked_.back().cdb[2], 0x00);
}

TEST_F(ScsiUnitTest, FillsTheLastBlockUpWithZeros) {
  Select(0x01);
  next_ = With({7});
  base::Bytes expected(512, 0);
  expected[0] = 7;
  EXPECT_EQ(Ask({0x28, 0, 0, 0, 0, 0, 0, 0, 1}, 512).data, expected);
}

TEST_F(ScsiUnitTest, RefusesBlocksBehindTheEnd) {
  Select(0x01);
  next_ = With({7});
  ExpectRefused(Ask({0x28, 0, 0, 0, 0, 0, 0, 0, 2}, 1024), {5, 0x21, 0});
}

TEST_F(ScsiUnitTest, RefusesOffsetsThatNoChunkCommandCanName) {
  Select(0x01);
  ExpectRefused(Ask({0x28, 0, 0x00, 0x80, 0, 0, 0, 0, 1}, 512), {5, 0x21, 0});
}

}  // namespace
}  // namespace vcam::usbip
