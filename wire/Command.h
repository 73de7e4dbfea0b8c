#ifndef KELVA_WIRE_COMMAND_H_
#define KELVA_WIRE_COMMAND_H_

#include <array>
#include <chrono>
#include <cstdint>
#include <span>
#include <vector>

#include "wire/TransferStatus.h"

// What travels between a door (in process, socket, USB/IP, SCSI generic) and the virtual camera.

namespace wire {

/// The direction of a command's data phase, as the host declared it.
enum class Direction : std::uint8_t {
  kNone = 0,        ///< no data phase, whatever length and buffer the host named
  kToCamera = 1,    ///< the host sends `data`
  kFromCamera = 2,  ///< the host takes at most `length` bytes
};

/// The largest data phase the camera takes part in; longer ones are refused before any memory is set aside.
inline constexpr std::uint32_t kMaxTransferLength = 16U << 20;

/// One SCSI command as a door received it.
struct Command {
  std::array<std::uint8_t, 16> cdb{};
  Direction direction = Direction::kNone;
  /// Bytes the host announced for its data phase; ignored for kNone.
  std::uint32_t length = 0;
  /// The bytes of a data phase to the camera; empty otherwise. A door passes at most `length` bytes. Borrowed for the
  /// call.
  std::span<const std::uint8_t> data{};
};

/// How the transfer itself ended; SCSI status counts only for kOk.
enum class Transport : std::uint8_t {
  kOk = 0,
  /// The pipe of the data phase is halted (for a command without data: the status pipe). Over USB: STALL on that
  /// endpoint until the host clears it, and no status; elsewhere: a transport error.
  kStall = 1,
  /// No answer, ever. The door keeps the host waiting until its time-out, a reset or the unplug.
  kHang = 2,
  /// The camera was unplugged during this command, after `data` (from the camera) or `moved` bytes (to the camera).
  /// Every later command ends this way with nothing moved.
  kGone = 3,
};

/// What the camera did with one command.
///
/// `moved` is what the camera claims. Without faults it equals data.size() (from the camera), the bytes accepted (to
/// the camera) or 0. Under a fault it may be anything: a door reports it unchanged (over USB: residue = asked -
/// moved, modulo 2^32), but never touches host memory beyond the length that was asked for.
struct Reply {
  Transport transport = Transport::kOk;
  std::uint8_t status = kScsiGood;
  Sense sense{};
  /// Bytes for the host. A surplus fault can make it longer than the length asked for: a door that can send them does
  /// (USB babble), one that writes memory cuts them off.
  std::vector<std::uint8_t> data{};
  std::uint32_t moved = 0;
  /// How long the command takes; the door waits this long before it answers.
  std::chrono::milliseconds delay{0};

  bool Good() const { return transport == Transport::kOk && status == kScsiGood; }
};

/// A reply of a command that moved no data and has no status, because its transport ended like this.
inline Reply EndedBy(Transport transport) {
  return {.transport = transport};
}

}  // namespace wire

#endif  // KELVA_WIRE_COMMAND_H_
