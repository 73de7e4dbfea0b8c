#include "apps/camera/Clock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>

namespace apps {
namespace {

using namespace std::chrono;

// 2026-11-21 04:16:05.789
constexpr _VscCdbTime kRecord = {{0xEA, 0x07, 0x0B, 0, 0x15, 0, 4, 0, 0x10, 0, 5, 0, 0x15, 0x03}};

_VscCdbTime With(std::size_t index, unsigned char low, unsigned char high) {
  _VscCdbTime record = kRecord;
  record.bytes[index] = low;
  record.bytes[index + 1] = high;
  return record;
}

TEST(ClockTest, TheRecordIsSevenLittleEndianNumbers) {
  ASSERT_TRUE(DecodeClock(kRecord).has_value());
  EXPECT_EQ(IsoText(*DecodeClock(kRecord)), "2026-11-21T04:16:05.789");
}

TEST(ClockTest, ATimeIsWrittenAsItIsRead) {
  const auto time = ReadIso("2026-11-21T04:16:05.789");
  ASSERT_TRUE(time.has_value());
  const _VscCdbTime record = EncodeClock(*time);
  EXPECT_TRUE(std::equal(record.bytes, record.bytes + 14, kRecord.bytes));
}

TEST(ClockTest, WhatIsNoTimeIsNothing) {
  EXPECT_FALSE(DecodeClock(With(2, 13, 0)).has_value());
  EXPECT_FALSE(DecodeClock(With(4, 31, 0)).has_value());
  EXPECT_FALSE(DecodeClock(With(6, 24, 0)).has_value());
  EXPECT_FALSE(DecodeClock(With(8, 60, 0)).has_value());
  EXPECT_FALSE(DecodeClock(With(12, 0xE8, 0x03)).has_value());
  EXPECT_FALSE(DecodeClock(_VscCdbTime{}).has_value());
}

TEST(ClockTest, IsoTextsAreReadWithAndWithoutSeconds) {
  EXPECT_EQ(IsoText(*ReadIso("2024-02-29 23:59")), "2024-02-29T23:59:00.000");
  EXPECT_EQ(IsoText(*ReadIso("2024-02-29T23:59:58")), "2024-02-29T23:59:58.000");
  EXPECT_EQ(IsoText(*ReadIso("2024-02-29T23:59:58.5")), "2024-02-29T23:59:58.500");
}

TEST(ClockTest, OtherTextsAreNotRead) {
  for (const char* bad :
       {"", "now", "2023-02-29T00:00", "2024-02-29", "2024-02-29T23:59:58Z", "2024-02-29T23:59:58.1234",
        "2024-02-29T23:60", "2024-02-29x23:59", "2024-02-29T-1:00", "2024-02-29T23:59:5.x"}) {
    EXPECT_FALSE(ReadIso(bad).has_value()) << bad;
  }
}

TEST(ClockTest, TheHostsTimeCanBeItsOwnOrUtc) {
  ::setenv("TZ", "UTC-2", 1);  // two hours east of Greenwich
  ::tzset();
  const system_clock::time_point moment(milliseconds(1'000));
  EXPECT_EQ(IsoText(HostClock(true, moment)), "1970-01-01T00:00:01.000");
  EXPECT_EQ(IsoText(HostClock(false, moment)), "1970-01-01T02:00:01.000");
  ::unsetenv("TZ");
}

TEST(ClockTest, ThisComputersTimeHasAZone) {
  const std::chrono::system_clock::time_point now{std::chrono::seconds(1'792'555'560)};
  EXPECT_EQ(HostTimeText(true, now), "2026-10-21T04:06:00Z");
  const char* zone = std::getenv("TZ");
  const std::string before = zone == nullptr ? "" : zone;
  ::setenv("TZ", "XST-5:45", 1);
  ::tzset();
  EXPECT_EQ(HostTimeText(false, now), "2026-10-21T09:51:00+05:45");
  ::setenv("TZ", "YST3:30", 1);
  ::tzset();
  EXPECT_EQ(HostTimeText(false, now), "2026-10-21T00:36:00-03:30");
  zone == nullptr ? ::unsetenv("TZ") : ::setenv("TZ", before.c_str(), 1);
  ::tzset();
}

}  // namespace
}  // namespace apps
