#include "apps/kelva/sheet/Day.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

TEST(DayTest, ADayIsNamedAsPeopleDo) {
  EXPECT_EQ(DayName("2026-03-14 15:09:26"), "Saturday, 14 March 2026");
  EXPECT_EQ(DayName("2024-02-29 00:00:00"), "Thursday, 29 February 2024");
  EXPECT_EQ(ShortDayName("2026-12-01 23:59:59"), "1 December 2026");
}

TEST(DayTest, ADayThatIsNotInTheCalendarHasNoName) {
  for (const char* time : {"", "2026", "2026-02-29 00:00:00", "2026-00-10 00:00:00", "2026-13-10 00:00:00",
                           "0000-00-00 00:00:00", "2026-01-99 00:00:00"}) {
    EXPECT_EQ(DayName(time), "") << time;
    EXPECT_EQ(ShortDayName(time), "") << time;
  }
}

}  // namespace
}  // namespace apps
