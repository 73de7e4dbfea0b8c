// The camera's clock record as a time, and times as text.

#include "apps/camera/Clock.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace apps {
namespace {

using namespace std::chrono;

struct Fields {
  int year, month, day, hour, minute, second, millisecond;
};

std::optional<ClockTime> FromFields(const Fields& f) {
  const year_month_day date(year(f.year), month(static_cast<unsigned>(f.month)), day(static_cast<unsigned>(f.day)));
  const bool inRange = f.hour < 24 && f.minute < 60 && f.second < 60 && f.millisecond < 1000;
  if (!date.ok() || f.year < 1 || !inRange) return std::nullopt;
  return local_days(date) + hours(f.hour) + minutes(f.minute) + seconds(f.second) + milliseconds(f.millisecond);
}

Fields ToFields(ClockTime time) {
  const auto midnight = floor<days>(time);
  const year_month_day date(midnight);
  const hh_mm_ss clock(time - midnight);
  return {static_cast<int>(date.year()),
          static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day())),
          static_cast<int>(clock.hours().count()),
          static_cast<int>(clock.minutes().count()),
          static_cast<int>(clock.seconds().count()),
          static_cast<int>(clock.subseconds().count())};
}

// ".5" is 500 ms. More than three digits are refused: a camera keeps milliseconds.
std::optional<int> Milliseconds(std::string_view fraction) {
  if (fraction.empty()) return 0;
  if (fraction.size() < 2 || fraction.size() > 4 || fraction[0] != '.') return std::nullopt;
  int value = 0;
  for (std::size_t i = 1; i <= 3; ++i) {
    const char digit = i < fraction.size() ? fraction[i] : '0';
    if (digit < '0' || digit > '9') return std::nullopt;
    value = value * 10 + (digit - '0');
  }
  return value;
}

}  // namespace

std::optional<ClockTime> DecodeClock(const _VscCdbTime& record) {
  std::array<int, 7> v{};
  for (std::size_t i = 0; i < v.size(); ++i) v[i] = record.bytes[2 * i] | record.bytes[2 * i + 1] << 8;
  return FromFields({v[0], v[1], v[2], v[3], v[4], v[5], v[6]});
}

_VscCdbTime EncodeClock(ClockTime time) {
  const Fields f = ToFields(time);
  const std::array<int, 7> v = {f.year, f.month, f.day, f.hour, f.minute, f.second, f.millisecond};
  _VscCdbTime record{};
  for (std::size_t i = 0; i < v.size(); ++i) {
    record.bytes[2 * i] = static_cast<unsigned char>(v[i] & 0xFF);
    record.bytes[2 * i + 1] = static_cast<unsigned char>((v[i] >> 8) & 0xFF);
  }
  return record;
}

std::string IsoText(ClockTime time) {
  const Fields f = ToFields(time);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03d", f.year, f.month, f.day, f.hour,
                f.minute, f.second, f.millisecond);
  return text.data();
}

std::optional<ClockTime> ReadIso(std::string_view text) {
  const std::string copy(text);
  Fields f{};
  int used = 0;
  char separator = 0;
  const char* shape = "%4d-%2d-%2d%c%2d:%2d%n";
  if (std::sscanf(copy.c_str(), shape, &f.year, &f.month, &f.day, &separator, &f.hour, &f.minute, &used) != 6) {
    return std::nullopt;
  }
  if (separator != 'T' && separator != ' ') return std::nullopt;
  std::string_view rest = text.substr(static_cast<std::size_t>(used));
  int more = 0;
  if (!rest.empty() && std::sscanf(copy.c_str() + used, ":%2d%n", &f.second, &more) != 1) return std::nullopt;
  rest.remove_prefix(static_cast<std::size_t>(more));
  const auto fraction = Milliseconds(rest);
  if (!fraction || f.month < 0 || f.day < 0 || f.hour < 0 || f.minute < 0 || f.second < 0) return std::nullopt;
  f.millisecond = *fraction;
  return FromFields(f);
}

namespace {

// How far this computer's zone is ahead of UTC.
seconds ZoneOffset(system_clock::time_point now) {
  const std::time_t whole = system_clock::to_time_t(now);
  std::tm local{};
  ::localtime_r(&whole, &local);
  return seconds(local.tm_gmtoff);
}

}  // namespace

ClockTime HostClock(bool utc, system_clock::time_point now) {
  const auto time = floor<milliseconds>(now.time_since_epoch());
  return ClockTime(utc ? time : time + ZoneOffset(now));
}

std::string HostTimeText(bool utc, system_clock::time_point now) {
  constexpr std::size_t kWithoutMilliseconds = 19;
  std::string text = IsoText(HostClock(utc, now)).substr(0, kWithoutMilliseconds);
  if (utc) return text + "Z";
  const auto ahead = duration_cast<minutes>(ZoneOffset(now)).count();
  std::array<char, 16> zone{};
  std::snprintf(zone.data(), zone.size(), "%c%02d:%02d", ahead < 0 ? '-' : '+', static_cast<int>(std::abs(ahead) / 60),
                static_cast<int>(std::abs(ahead) % 60));
  return text + zone.data();
}

}  // namespace apps
