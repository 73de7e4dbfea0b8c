#include "vcam/usbip/BulkOnly.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "vcam/usbip/Messages.h"

namespace vcam::usbip {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::SizeIs;

constexpr Clock::time_point kNow{};

base::Bytes Wrapped(std::uint8_t flags, std::uint32_t length, std::uint8_t operation) {
  base::Bytes bytes{'U', 'S', 'B', 'C', 9, 0, 0, 0};
  base::Append(bytes, length);
  for (const std::uint8_t byte : {flags, std::uint8_t{0}, std::uint8_t{16}, operation}) bytes.push_back(byte);
  bytes.resize(31);
  return bytes;
}

base::Bytes Reading(std::uint32_t length) {
  return Wrapped(0x80, length, 0xC6);
}
base::Bytes Writing(std::uint32_t length) {
  return Wrapped(0x00, length, 0xC5);
}
base::Bytes Acting() {
  return Wrapped(0x00, 0, 0xC0);
}

class BulkOnlyTest : public ::testing::Test {
 protected:
  wire::Reply Execute(const wire::Command& command) {
    given_.assign(command.data.begin(), command.data.end());
    ++executed_;
    return reply_;
  }
  void Answers(base::Bytes data) {
    reply_.moved = static_cast<std::uint32_t>(data.size());
    reply_.data = std::move(data);
  }
  // The status wrapper's residue and status, or an impossible pair when there is none.
  std::pair<std::uint32_t, int> Status() {
    const auto taken = bulk_.Take(13, kNow);
    if (!taken || taken->data.size() != 13 || taken->data[0] != 'U' || taken->data[4] != 9) return {0, -1};
    return {base::Load<std::uint32_t>(taken->data, 8), taken->data[12]};
  }

  wire::Reply reply_;
  base::Bytes given_;
  int executed_ = 0;
  CableFault fault_ = CableFault::kNone;
  ScsiUnit unit_{{}, "A7", [this](const wire::Command& command) { return Execute(command); }};
  BulkOnly bulk_{unit_, [this] { return fault_; }};
};

using Ending = std::pair<std::uint32_t, int>;

TEST_F(BulkOnlyTest, CommandWithoutDataIsFollowedByItsStatus) {
  EXPECT_EQ(bulk_.Give(Acting(), kNow), kUrbOk);
  EXPECT_EQ(executed_, 1);
  EXPECT_EQ(Status(), Ending(0, 0));
}

TEST_F(BulkOnlyTest, NothingIsSentBeforeACommand) {
  EXPECT_EQ(bulk_.Take(13, kNow), std::nullopt);
}

TEST_F(BulkOnlyTest, DataFromTheCameraThenStatus) {
  Answers({1, 2, 3, 4});
  bulk_.Give(Reading(4), kNow);
  const auto data = bulk_.Take(4, kNow);
  ASSERT_TRUE(data.has_value());
  EXPECT_THAT(data->data, ElementsAre(1, 2, 3, 4));
  EXPECT_EQ(data->actual, 4U);
  EXPECT_EQ(Status(), Ending(0, 0));
}

TEST_F(BulkOnlyTest, DataMayBeTakenInSeveralTransfers) {
  Answers({1, 2, 3});
  bulk_.Give(Reading(3), kNow);
  EXPECT_THAT(bulk_.Take(2, kNow)->data, ElementsAre(1, 2));
  EXPECT_THAT(bulk_.Take(1, kNow)->data, ElementsAre(3));
  EXPECT_EQ(Status(), Ending(0, 0));
}

TEST_F(BulkOnlyTest, LessDataThanAskedEndsTheTransferAndIsTheResidue) {
  Answers({1, 2, 3});
  bulk_.Give(Reading(8), kNow);
  EXPECT_THAT(bulk_.Take(8, kNow)->data, SizeIs(3));
  EXPECT_EQ(Status(), Ending(5, 0));
}

TEST_F(BulkOnlyTest, NoDataAtAllIsAnEmptyTransfer) {
  bulk_.Give(Reading(8), kNow);
  EXPECT_EQ(bulk_.Take(8, kNow)->actual, 0U);
  EXPECT_EQ(Status(), Ending(8, 0));
}

TEST_F(BulkOnlyTest, DataToTheCameraIsCollectedAndThenRun) {
  reply_.moved = 5;
  EXPECT_EQ(bulk_.Give(Writing(5), kNow), kUrbOk);
  EXPECT_EQ(bulk_.Give(base::Bytes{1, 2}, kNow), kUrbOk);
  EXPECT_EQ(executed_, 0);
  EXPECT_EQ(bulk_.Give(base::Bytes{3, 4, 5}, kNow), kUrbOk);
  EXPECT_THAT(given_, ElementsAre(1, 2, 3, 4, 5));
  EXPECT_EQ(Status(), Ending(0, 0));
}

TEST_F(BulkOnlyTest, RefusalIsAFailedStatus) {
  reply_.status = wire::kScsiCheckCondition;
  bulk_.Give(Reading(4), kNow);
  bulk_.Take(4, kNow);
  EXPECT_EQ(Status(), Ending(4, 1));
}

TEST_F(BulkOnlyTest, MoreDataThanAnnouncedHaltsUntilAReset) {
  bulk_.Give(Writing(2), kNow);
  EXPECT_EQ(bulk_.Give(base::Bytes{1, 2, 3}, kNow), kUrbStall);
  EXPECT_EQ(executed_, 0);
  bulk_.SetHaltOut(false);
  EXPECT_TRUE(bulk_.HaltedOut());
  bulk_.Reset();
  bulk_.SetHaltOut(false);
  bulk_.SetHaltIn(false);
  EXPECT_EQ(bulk_.Give(Acting(), kNow), kUrbOk);
}

TEST_F(BulkOnlyTest, WhatIsNoCommandHaltsBothPipesUntilAReset) {
  EXPECT_EQ(bulk_.Give(base::Bytes{1, 2, 3}, kNow), kUrbStall);
  EXPECT_EQ(bulk_.Take(13, kNow)->status, kUrbStall);
  bulk_.SetHaltIn(false);
  EXPECT_EQ(bulk_.Take(13, kNow)->status, kUrbStall);
}

TEST_F(BulkOnlyTest, CommandOfMoreBytesThanTheCameraMovesIsNone) {
  EXPECT_EQ(bulk_.Give(Writing(std::numeric_limits<std::uint32_t>::max()), kNow), kUrbStall);
}

TEST_F(BulkOnlyTest, CommandBeforeTheStatusWasTakenIsNone) {
  bulk_.Give(Acting(), kNow);
  EXPECT_EQ(bulk_.Give(Acting(), kNow), kUrbStall);
}

TEST_F(BulkOnlyTest, StallOfDataFromTheCameraIsFollowedByAFailedStatus) {
  reply_.transport = wire::Transport::kStall;
  bulk_.Give(Reading(4), kNow);
  EXPECT_EQ(bulk_.Take(4, kNow)->status, kUrbStall);
  EXPECT_EQ(bulk_.Take(13, kNow)->status, kUrbStall);
  bulk_.SetHaltIn(false);
  EXPECT_EQ(Status(), Ending(4, 1));
}

TEST_F(BulkOnlyTest, StallOfDataToTheCameraIsFollowedByAFailedStatus) {
  reply_.transport = wire::Transport::kStall;
  bulk_.Give(Writing(1), kNow);
  EXPECT_EQ(bulk_.Give(base::Bytes{1}, kNow), kUrbStall);
  EXPECT_EQ(bulk_.Give(base::Bytes{1}, kNow), kUrbStall);
  bulk_.SetHaltOut(false);
  EXPECT_EQ(Status(), Ending(1, 1));
}

TEST_F(BulkOnlyTest, SlowAnswerIsWaitedFor) {
  reply_.delay = 20ms;
  bulk_.Give(Acting(), kNow);
  EXPECT_EQ(bulk_.Take(13, kNow), std::nullopt);
  EXPECT_EQ(bulk_.WaitsUntil(kNow), kNow + 20ms);
  EXPECT_THAT(bulk_.Take(13, kNow + 20ms)->data, SizeIs(13));
}

TEST_F(BulkOnlyTest, HangEndsWithAReset) {
  reply_.transport = wire::Transport::kHang;
  bulk_.Give(Acting(), kNow);
  EXPECT_EQ(bulk_.Take(13, kNow + 1h), std::nullopt);
  EXPECT_EQ(bulk_.WaitsUntil(kNow), std::nullopt);
  bulk_.Reset();
  reply_ = {};
  bulk_.Give(Acting(), kNow);
  EXPECT_EQ(Status(), Ending(0, 0));
}

TEST_F(BulkOnlyTest, CableIsPulledBehindTheLastByteThatTheCameraSent) {
  Answers({1, 2, 3});
  reply_.transport = wire::Transport::kGone;
  bulk_.Give(Reading(8), kNow);
  EXPECT_FALSE(bulk_.Unplugged(kNow));
  const auto taken = bulk_.Take(8, kNow);
  ASSERT_TRUE(taken.has_value());
  EXPECT_EQ(taken->actual, 8U);
  EXPECT_THAT(taken->data, ElementsAre(1, 2, 3));
  EXPECT_TRUE(taken->unplug);
}

TEST_F(BulkOnlyTest, CameraThatWentWithoutAByteIsUnplugged) {
  reply_.transport = wire::Transport::kGone;
  bulk_.Give(Acting(), kNow);
  EXPECT_TRUE(bulk_.Unplugged(kNow));
}

TEST_F(BulkOnlyTest, SurplusDataIsBabble) {
  Answers({1, 2, 3, 4, 5});
  bulk_.Give(Reading(4), kNow);
  const auto taken = bulk_.Take(4, kNow);
  EXPECT_EQ(taken->status, kUrbBabble);
  EXPECT_THAT(taken->data, SizeIs(4));
  EXPECT_EQ(Status(), Ending(0xFFFFFFFF, 0));
}

TEST_F(BulkOnlyTest, StatusWithoutRoomIsBabble) {
  bulk_.Give(Acting(), kNow);
  EXPECT_EQ(bulk_.Take(12, kNow)->status, kUrbBabble);
}

struct Spoiled {
  CableFault fault;
  std::size_t data;
  Ending status;
};

class CableFaultTest : public BulkOnlyTest, public ::testing::WithParamInterface<Spoiled> {};

TEST_P(CableFaultTest, SpoilsTheCommand) {
  fault_ = GetParam().fault;
  Answers({1, 2, 3, 4});
  bulk_.Give(Reading(4), kNow);
  EXPECT_THAT(bulk_.Take(4, kNow)->data, SizeIs(GetParam().data));
  EXPECT_EQ(Status(), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    All, CableFaultTest,
    ::testing::Values(Spoiled{CableFault::kHalfResidue, 4, {2, 0}},
                      Spoiled{CableFault::kHugeResidue, 4, {0x7FFFFFFF, 0}},
                      Spoiled{CableFault::kZeroResidue, 2, {0, 0}}, Spoiled{CableFault::kFailNoSense, 0, {4, 1}},
                      Spoiled{CableFault::kWrongTag, 4, {0, -1}}, Spoiled{CableFault::kPhaseError, 4, {0, 2}},
                      Spoiled{CableFault::kShortStatus, 4, {0, -1}}, Spoiled{CableFault::kBabble, 4, {0, 0}}));

TEST_F(BulkOnlyTest, SkippedDataIsTheStatusInItsPlace) {
  fault_ = CableFault::kSkipData;
  Answers({1, 2, 3, 4});
  bulk_.Give(Reading(64), kNow);
  EXPECT_THAT(bulk_.Take(64, kNow)->data, ElementsAre('U', 'S', 'B', 'S', 9, 0, 0, 0, 64, 0, 0, 0, 0));
  EXPECT_EQ(bulk_.Take(13, kNow), std::nullopt);
}

TEST_F(BulkOnlyTest, PulledCableIsOutBehindHalfOfTheData) {
  fault_ = CableFault::kPull;
  Answers({1, 2, 3, 4});
  bulk_.Give(Reading(4), kNow);
  const auto taken = bulk_.Take(4, kNow);
  ASSERT_TRUE(taken.has_value());
  EXPECT_THAT(taken->data, ElementsAre(1, 2));
  EXPECT_TRUE(taken->unplug);
}

TEST_F(BulkOnlyTest, PulledCableIsOutInTheMidstOfACommandWithoutData) {
  fault_ = CableFault::kPull;
  bulk_.Give(Acting(), kNow);
  EXPECT_TRUE(bulk_.Unplugged(kNow));
}

TEST_F(BulkOnlyTest, CommandsOfTheKernelAreNotSpoiled) {
  fault_ = CableFault::kPhaseError;
  bulk_.Give(Wrapped(0x00, 0, 0x00), kNow);
  EXPECT_EQ(Status(), Ending(0, 1));
}

}  // namespace
}  // namespace vcam::usbip
