#include "vcam/usbip/UsbCamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vcam::usbip {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::SizeIs;

constexpr Clock::time_point kNow{};

Submit Control(std::uint32_t sequence, std::array<std::uint8_t, 8> setup, std::uint32_t length) {
  return {sequence, 0, (setup[0] & 0x80) != 0, length, setup, {}};
}

Submit In(std::uint32_t sequence, std::uint32_t length, std::uint8_t endpoint = 1) {
  return {sequence, endpoint, true, length, {}, {}};
}

Submit Out(std::uint32_t sequence, base::Bytes data, std::uint8_t endpoint = 2) {
  const auto length = static_cast<std::uint32_t>(data.size());
  return {sequence, endpoint, false, length, {}, std::move(data)};
}

// A command of the camera that reads four bytes.
base::Bytes AskFour() {
  return {'U', 'S', 'B', 'C', 1, 0, 0, 0, 4, 0, 0, 0, 0x80, 0, 16, 0xC6, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
}

class UsbCameraTest : public ::testing::Test {
 protected:
  void Configure() {
    camera_.Submit(Control(1, {0x00, 9, 1, 0, 0, 0, 0, 0}, 0), kNow);
    EXPECT_EQ(camera_.Next(kNow)->result.status, kUrbOk);
  }

  wire::Reply reply_{wire::Transport::kOk, wire::kScsiGood, {}, {1, 0, 0, 0}, 4, {}};
  UsbCamera camera_{{{"Kelva", "Camera", "A7", Speed::kHigh}, {}, [this](const wire::Command&) { return reply_; }, {}}};
};

TEST_F(UsbCameraTest, AnswersControlRequestsAtOnce) {
  camera_.Submit(Control(5, {0x80, 6, 0, 1, 0, 0, 18, 0}, 18), kNow);
  const auto finished = camera_.Next(kNow);
  ASSERT_TRUE(finished.has_value());
  EXPECT_EQ(finished->sequence, 5U);
  EXPECT_EQ(finished->result.actual, 18U);
  EXPECT_THAT(finished->result.data, SizeIs(18));
  EXPECT_EQ(camera_.Next(kNow), std::nullopt);
}

TEST_F(UsbCameraTest, StallsControlRequestsWithoutRoomForTheirAnswer) {
  camera_.Submit(Control(5, {0x80, 6, 0, 1, 0, 0, 18, 0}, 8), kNow);
  EXPECT_EQ(camera_.Next(kNow)->result.status, kUrbStall);
}

TEST_F(UsbCameraTest, StallsBulkTransfersBeforeAConfigurationIsChosen) {
  camera_.Submit(Out(5, AskFour()), kNow);
  EXPECT_EQ(camera_.Next(kNow)->result.status, kUrbStall);
}

TEST_F(UsbCameraTest, RunsACommandOfTheCamera) {
  Configure();
  camera_.Submit(Out(5, AskFour()), kNow);
  EXPECT_EQ(camera_.Next(kNow)->result.actual, 31U);
  camera_.Submit(In(6, 4), kNow);
  EXPECT_THAT(camera_.Next(kNow)->result.data, ElementsAre(1, 0, 0, 0));
  camera_.Submit(In(7, 13), kNow);
  EXPECT_THAT(camera_.Next(kNow)->result.data, SizeIs(13));
}

TEST_F(UsbCameraTest, AnswersTransfersInTheOrderTheyWereAskedFor) {
  Configure();
  camera_.Submit(In(6, 4), kNow);
  camera_.Submit(In(7, 13), kNow);
  EXPECT_EQ(camera_.Next(kNow), std::nullopt);
  camera_.Submit(Out(8, AskFour()), kNow);
  EXPECT_EQ(camera_.Next(kNow)->sequence, 8U);
  EXPECT_EQ(camera_.Next(kNow)->sequence, 6U);
  EXPECT_EQ(camera_.Next(kNow)->sequence, 7U);
}

TEST_F(UsbCameraTest, GivesAPendingTransferBackOnce) {
  Configure();
  camera_.Submit(In(6, 4), kNow);
  EXPECT_FALSE(camera_.Unlink(5));
  EXPECT_TRUE(camera_.Unlink(6));
  EXPECT_FALSE(camera_.Unlink(6));
}

TEST_F(UsbCameraTest, StallsEndpointsThatDoNotExist) {
  Configure();
  camera_.Submit(In(6, 4, 3), kNow);
  EXPECT_EQ(camera_.Next(kNow)->result.status, kUrbStall);
  camera_.Submit(Out(7, {1}, 1), kNow);
  EXPECT_EQ(camera_.Next(kNow)->result.status, kUrbStall);
}

TEST_F(UsbCameraTest, RefusesAHeapOfPendingTransfers) {
  Configure();
  for (std::uint32_t i = 0; i < 1024; ++i) camera_.Submit(In(i, 4), kNow);
  EXPECT_THROW(camera_.Submit(In(2000, 4), kNow), ProtocolError);
}

TEST_F(UsbCameraTest, ResetRequestEndsASilentCommand) {
  Configure();
  reply_.transport = wire::Transport::kHang;
  camera_.Submit(Out(5, AskFour()), kNow);
  camera_.Next(kNow);
  camera_.Submit(Control(6, {0x21, 0xFF, 0, 0, 0, 0, 0, 0}, 0), kNow);
  EXPECT_EQ(camera_.Next(kNow)->result.status, kUrbOk);
  reply_.transport = wire::Transport::kOk;
  camera_.Submit(Out(7, AskFour()), kNow);
  EXPECT_EQ(camera_.Next(kNow)->result.status, kUrbOk);
}

TEST_F(UsbCameraTest, SaysHowLongASlowCameraKeepsTheHostWaiting) {
  Configure();
  reply_.delay = 5ms;
  camera_.Submit(Out(5, AskFour()), kNow);
  EXPECT_EQ(camera_.WaitsUntil(kNow), kNow + 5ms);
  EXPECT_EQ(camera_.WaitsUntil(kNow + 5ms), std::nullopt);
}

}  // namespace
}  // namespace vcam::usbip
