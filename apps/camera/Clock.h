#ifndef KELVA_APPS_CAMERA_CLOCK_H_
#define KELVA_APPS_CAMERA_CLOCK_H_

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "src/wifi/VscRecords.h"

namespace apps {

/// A time without a zone, to the millisecond, as cameras keep it.
using ClockTime = std::chrono::local_time<std::chrono::milliseconds>;

/// The camera's clock record in the layout that this project's cameras use: seven little-endian 16-bit numbers, year,
/// month, day, hour, minute, second, millisecond. Nothing when the record holds no time in that layout.
std::optional<ClockTime> DecodeClock(const _VscCdbTime& record);
_VscCdbTime EncodeClock(ClockTime time);

/// "2026-11-21T04:16:00.123".
std::string IsoText(ClockTime time);
/// Reads "2026-11-21T04:16:00", with a blank for the T, without the seconds, or with ".123" after them. No zone.
std::optional<ClockTime> ReadIso(std::string_view text);

/// This computer's time in UTC or in its own zone.
ClockTime HostClock(bool utc, std::chrono::system_clock::time_point now);

/// This computer's time with its zone: "2026-11-21T05:16:00+01:00", or "2026-11-21T04:16:00Z" in UTC.
std::string HostTimeText(bool utc, std::chrono::system_clock::time_point now);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_CLOCK_H_
