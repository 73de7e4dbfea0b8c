// The camera's clock as an offset from the host's, and its 14 bytes on the wire.
#include "vcam/device/CameraClock.h"

#include <array>

namespace vcam {
namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::hh_mm_ss;
using std::chrono::milliseconds;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::uint16_t kFirstYear = 1980;
constexpr std::uint16_t kLastYear = 2107;

using Fields = std::array<std::uint16_t, 7>;

Fields FieldsOf(std::span<const std::uint8_t> bytes) {
  Fields fields{};
  for (std::size_t i = 0; i < fields.size(); ++i) fields[i] = base::Load<std::uint16_t>(bytes, 2 * i);
  return fields;
}

std::optional<CameraClock::Time> TimeOf(const Fields& f) {
  const year_month_day date{std::chrono::year(f[0]), std::chrono::month(f[1]), std::chrono::day(f[2])};
  if (f[0] < kFirstYear || f[0] > kLastYear || !date.ok()) return std::nullopt;
  if (f[3] > 23 || f[4] > 59 || f[5] > 59 || f[6] > 999) return std::nullopt;
  return CameraClock::Time(sys_days(date)) + std::chrono::hours(f[3]) + std::chrono::minutes(f[4]) +
         std::chrono::seconds(f[5]) + milliseconds(f[6]);
}

}  // namespace

CameraClock::Time CameraClock::HostTime() const {
  return floor<milliseconds>(now_());
}

CameraClock::Time CameraClock::Now() const {
  return HostTime() + offset_;
}

base::Bytes CameraClock::Read() const {
  const Time time = Now();
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss<milliseconds> clock(time - day);
  base::Bytes bytes;
  const auto append = [&](auto... fields) { base::Append(bytes, static_cast<std::uint16_t>(fields)...); };
  append(static_cast<int>(date.year()), static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
         clock.hours().count(), clock.minutes().count(), clock.seconds().count(), clock.subseconds().count());
  return bytes;
}

bool CameraClock::Set(std::span<const std::uint8_t> bytes) {
  if (bytes.size() != kTimeLength) return false;
  const std::optional<Time> time = TimeOf(FieldsOf(bytes));
  if (!time) return false;
  offset_ = *time - HostTime();
  return true;
}

}  // namespace vcam
