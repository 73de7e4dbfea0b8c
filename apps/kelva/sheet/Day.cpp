// Names of days for the headings of a contact sheet.
#include "apps/kelva/sheet/Day.h"

#include <array>
#include <charconv>
#include <chrono>

namespace apps {
namespace {

using std::chrono::year_month_day;

constexpr std::array<const char*, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                  "Thursday", "Friday", "Saturday"};
constexpr std::array<const char*, 12> kMonths = {"January", "February", "March",     "April",   "May",      "June",
                                                 "July",    "August",   "September", "October", "November", "December"};

int Number(std::string_view digits) {
  int number = -1;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

// "2026-03-14 15:09:26"
year_month_day DayOf(std::string_view time) {
  if (time.size() < 10) return {};
  return {std::chrono::year(Number(time.substr(0, 4))),
          std::chrono::month(static_cast<unsigned>(Number(time.substr(5, 2)))),
          std::chrono::day(static_cast<unsigned>(Number(time.substr(8, 2))))};
}

}  // namespace

std::string ShortDayName(std::string_view time) {
  const year_month_day day = DayOf(time);
  if (!day.ok()) return "";
  return std::to_string(static_cast<unsigned>(day.day())) + " " + kMonths[static_cast<unsigned>(day.month()) - 1] +
         " " + std::to_string(static_cast<int>(day.year()));
}

std::string DayName(std::string_view time) {
  const year_month_day day = DayOf(time);
  if (!day.ok()) return "";
  const std::chrono::weekday weekday{std::chrono::sys_days(day)};
  return std::string(kWeekdays[weekday.c_encoding()]) + ", " + ShortDayName(time);
}

}  // namespace apps
