#ifndef KELVA_VCAM_DEVICE_CAMERA_CLOCK_H_
#define KELVA_VCAM_DEVICE_CAMERA_CLOCK_H_

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "base/Bytes.h"

namespace vcam {

/// The camera's clock: the host's time in UTC until it is set, ticking on from there.
///
/// On the wire: seven little-endian 16-bit numbers: year, month, day, hour, minute, second, millisecond.
class CameraClock {
 public:
  using Time = std::chrono::sys_time<std::chrono::milliseconds>;

  explicit CameraClock(std::function<std::chrono::system_clock::time_point()> now) : now_(std::move(now)) {}

  Time Now() const;
  base::Bytes Read() const;
  /// Sets the clock from its 14 bytes; false, and no change, when they are not a time between 1980 and 2107.
  bool Set(std::span<const std::uint8_t> bytes);

  std::chrono::milliseconds Offset() const { return offset_; }
  void SetOffset(std::chrono::milliseconds offset) { offset_ = offset; }

 private:
  Time HostTime() const;

  std::function<std::chrono::system_clock::time_point()> now_;
  std::chrono::milliseconds offset_{0};
};

inline constexpr std::size_t kTimeLength = 14;

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_CAMERA_CLOCK_H_
