// Times of pictures: text, calendar, and this computer's zone.
#include "apps/import/TakenTime.h"

#include <array>
#include <cstdio>

#include "apps/camera/Picture.h"
#include "base/Ascii.h"

namespace apps {
namespace {

namespace chrono = std::chrono;

// Two or four digits.
int Digits(std::string_view text, std::size_t at, std::size_t count) {
  int number = 0;
  for (const char digit : text.substr(at, count)) number = 10 * number + (digit - '0');
  return number;
}

struct Split {
  chrono::year_month_day date;
  chrono::hh_mm_ss<chrono::seconds> clock;
};

Split SplitTime(TakenTime time) {
  const auto midnight = chrono::floor<chrono::days>(time);
  return {chrono::year_month_day(midnight), chrono::hh_mm_ss(time - midnight)};
}

}  // namespace

std::optional<TakenTime> ParseTaken(std::string_view text) {
  constexpr int kFirstYear = 1970;
  constexpr int kLastYear = 2199;
  if (!base::HasShape(text, "0000-00-00 00:00:00")) return std::nullopt;
  const int year = Digits(text, 0, 4);
  const chrono::year_month_day date = chrono::year(year) / Digits(text, 5, 2) / Digits(text, 8, 2);
  const int hour = Digits(text, 11, 2);
  const int minute = Digits(text, 14, 2);
  const int second = Digits(text, 17, 2);
  if (!date.ok() || year < kFirstYear || year > kLastYear || hour > 23 || minute > 59 || second > 59) {
    return std::nullopt;
  }
  return chrono::local_days(date) + chrono::hours(hour) + chrono::minutes(minute) + chrono::seconds(second);
}

std::string TakenText(TakenTime time) {
  const auto [date, clock] = SplitTime(time);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text.data();
}

std::optional<TakenTime> CatalogueTaken(const DcfObj& picture) {
  const auto text = PictureTime(picture);
  return text ? ParseTaken(*text) : std::nullopt;
}

std::time_t MomentHere(TakenTime time) {
  const auto [date, clock] = SplitTime(time);
  std::tm parts{};
  parts.tm_year = static_cast<int>(date.year()) - 1900;
  parts.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
  parts.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
  parts.tm_hour = static_cast<int>(clock.hours().count());
  parts.tm_min = static_cast<int>(clock.minutes().count());
  parts.tm_sec = static_cast<int>(clock.seconds().count());
  parts.tm_isdst = -1;
  return std::mktime(&parts);
}

}  // namespace apps
