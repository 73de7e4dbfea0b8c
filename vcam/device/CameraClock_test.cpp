#include "vcam/device/CameraClock.h"

#include <gmock/gmock.h>

namespace vcam {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::system_clock;

// 2026-03-14 15:09:26.535 UTC.
constexpr milliseconds kPi{1773500966535};

class CameraClockTest : public testing::Test {
 protected:
  system_clock::time_point now_{kPi};
  CameraClock clock_{[this] { return now_; }};
};

TEST_F(CameraClockTest, ShowsTheHostsTimeUntilItIsSet) {
  EXPECT_EQ(clock_.Read(), (base::Bytes{0xEA, 0x07, 3, 0, 14, 0, 15, 0, 9, 0, 26, 0, 0x17, 0x02}));
}

TEST_F(CameraClockTest, TicksOnFromTheTimeThatWasSet) {
  // 1999-12-31 23:59:59.000
  ASSERT_TRUE(clock_.Set(base::Bytes{0xCF, 0x07, 12, 0, 31, 0, 23, 0, 59, 0, 59, 0, 0, 0}));
  now_ += milliseconds(1001);
  EXPECT_EQ(clock_.Read(), (base::Bytes{0xD0, 0x07, 1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0}));
}

TEST_F(CameraClockTest, RefusesWhatIsNoTime) {
  const base::Bytes good{0xEA, 0x07, 2, 0, 28, 0, 23, 0, 59, 0, 59, 0, 0xE7, 0x03};
  EXPECT_TRUE(clock_.Set(good));
  const auto with = [&](std::size_t at, std::uint8_t value) {
    base::Bytes bytes = good;
    bytes[at] = value;
    return bytes;
  };
  EXPECT_FALSE(clock_.Set(with(4, 29))) << "29 February 2026";
  EXPECT_FALSE(clock_.Set(with(2, 13))) << "month 13";
  EXPECT_FALSE(clock_.Set(with(6, 24))) << "hour 24";
  EXPECT_FALSE(clock_.Set(with(8, 60))) << "minute 60";
  EXPECT_FALSE(clock_.Set(with(10, 60))) << "second 60";
  EXPECT_FALSE(clock_.Set(with(12, 0xE8))) << "millisecond 1000";
  EXPECT_FALSE(clock_.Set(with(1, 0x00))) << "year 234";
  EXPECT_FALSE(clock_.Set(base::Bytes(14, 0xFF)));
  EXPECT_FALSE(clock_.Set(base::Bytes(13, 0x01)));
}

TEST_F(CameraClockTest, TakesTheYearsThatAFileOnTheCardCanHave) {
  const auto january = [](int year) {
    return base::Bytes{
        static_cast<std::uint8_t>(year), static_cast<std::uint8_t>(year >> 8), 1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  };
  EXPECT_FALSE(clock_.Set(january(1979)));
  EXPECT_TRUE(clock_.Set(january(1980)));
  EXPECT_TRUE(clock_.Set(january(2107)));
  EXPECT_FALSE(clock_.Set(january(2108)));
}

TEST_F(CameraClockTest, KeepsItsOffsetToTheHostsTime) {
  clock_.SetOffset(seconds(60));
  EXPECT_EQ(clock_.Read()[8], 10);
  EXPECT_EQ(clock_.Offset(), seconds(60));
}

}  // namespace
}  // namespace vcam
