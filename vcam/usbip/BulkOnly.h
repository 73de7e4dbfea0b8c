#ifndef KELVA_VCAM_USBIP_BULK_ONLY_H_
#define KELVA_VCAM_USBIP_BULK_ONLY_H_

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "vcam/usbip/CableFaults.h"
#include "vcam/usbip/CommandWrapper.h"
#include "vcam/usbip/ScsiUnit.h"
#include "wire/Command.h"

namespace vcam::usbip {

using Clock = std::chrono::steady_clock;

/// What became of a transfer from the device.
struct Taken {
  std::int32_t status = 0;
  /// The bytes moved, as the answer's header tells the host.
  std::uint32_t actual = 0;
  base::Bytes data{};
  /// Pull the cable after the last byte of `data`, even if `actual` announces more.
  bool unplug = false;
};

/// The device's side of the bulk-only transport: a command wrapper comes in, data moves, a status wrapper goes out. The
/// caller gives the time, and so decides whether to wait for a slow or silent camera, to give it up or to reset it.
class BulkOnly {
 public:
  /// Tells which fault, if any, the cable adds to a command of the camera.
  using FaultSource = std::function<CableFault()>;

  explicit BulkOnly(ScsiUnit& unit, FaultSource faults = {}) : unit_(unit), faults_(std::move(faults)) {}

  /// Takes a transfer to the device. Gives its status.
  std::int32_t Give(std::span<const std::uint8_t> bytes, Clock::time_point now);
  /// Answers a transfer from the device with room for `length` bytes; nothing while the camera is not done.
  std::optional<Taken> Take(std::uint32_t length, Clock::time_point now);
  /// When Take will have more to say; nothing when only the host can change that.
  std::optional<Clock::time_point> WaitsUntil(Clock::time_point now) const;
  /// Whether the camera has gone and every byte before that was sent.
  bool Unplugged(Clock::time_point now) const;

  /// Waits for a command again; halted pipes stay halted.
  void Reset();
  void SetHaltIn(bool halted);
  void SetHaltOut(bool halted);
  bool HaltedIn() const { return haltedIn_; }
  bool HaltedOut() const { return haltedOut_; }

 private:
  enum class Phase : std::uint8_t { kCommand, kDataOut, kDataIn, kStatus };

  std::int32_t Begin(std::span<const std::uint8_t> bytes, Clock::time_point now);
  std::int32_t Collect(std::span<const std::uint8_t> bytes, Clock::time_point now);
  std::int32_t HaltBoth();
  void RunCommand(Clock::time_point now);
  void Settle(wire::Reply reply, Clock::time_point now);
  void ApplyFault(CableFault fault);
  Taken TakeData(std::uint32_t length);
  Taken TakeStatus(std::uint32_t length);
  Taken StallIn();

  ScsiUnit& unit_;
  FaultSource faults_;
  Phase phase_ = Phase::kCommand;
  bool haltedIn_ = false;
  bool haltedOut_ = false;
  /// Set by an invalid command wrapper: both pipes stay halted until a Bulk-Only Reset.
  bool broken_ = false;
  /// Whether the data phase, or the status of a command without one, is to be stalled.
  bool stall_ = false;
  bool gone_ = false;
  bool hang_ = false;
  bool cutStatus_ = false;
  Clock::time_point readyAt_{};
  CommandWrapper command_{};
  base::Bytes data_{};
  std::size_t sent_ = 0;
  StatusWrapper status_{};
};

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_BULK_ONLY_H_
