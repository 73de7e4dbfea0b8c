#ifndef KELVA_VCAM_USBIP_MESSAGES_H_
#define KELVA_VCAM_USBIP_MESSAGES_H_

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <variant>

#include "base/Bytes.h"

// The messages that travel between the host's kernel and a device that it has attached over USB/IP: a header of 48 bytes,
// big-endian, and the bytes of a transfer. Everything received is refused unless it is exactly what a kernel sends.

namespace vcam::usbip {

/// The peer sent something that no USB/IP host sends. The connection cannot be read any further.
class ProtocolError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

inline constexpr std::size_t kHeaderSize = 48;
/// The largest transfer that is accepted; the kernel's storage driver stays far below it.
inline constexpr std::uint32_t kMaxUrbLength = 4U << 20;

/// Statuses of a finished transfer, as the kernel of the host understands them.
inline constexpr std::int32_t kUrbOk = 0;
inline constexpr std::int32_t kUrbStall = -32;
inline constexpr std::int32_t kUrbBabble = -75;
inline constexpr std::int32_t kUrbUnlinked = -104;

/// One transfer that the host asks for.
struct Submit {
  std::uint32_t sequence = 0;
  std::uint8_t endpoint = 0;
  bool in = false;
  std::uint32_t length = 0;
  std::array<std::uint8_t, 8> setup{};
  /// The bytes of a transfer to the device; `length` of them.
  base::Bytes data{};
};

/// The host takes a transfer back.
struct Unlink {
  std::uint32_t sequence = 0;
  std::uint32_t target = 0;
};

using Message = std::variant<Submit, Unlink>;

/// Cuts the stream of a connection into messages. Feed it what arrived, then ask until it has no more.
class MessageReader {
 public:
  /// `device` is the number that every message must name.
  explicit MessageReader(std::uint32_t device) : device_(device) {}

  void Feed(std::span<const std::uint8_t> bytes);
  /// The next whole message, or nothing yet. Throws ProtocolError; after that the reader must not be used.
  std::optional<Message> Next();

 private:
  std::uint32_t device_;
  base::Bytes pending_{};
  std::size_t taken_ = 0;
};

using Header = std::array<std::uint8_t, kHeaderSize>;

/// The header of an answer; `actual` counts the bytes moved, which follow the header for a transfer from the device.
Header EncodeSubmitted(std::uint32_t sequence, std::int32_t status, std::uint32_t actual);
/// `status` is kUrbUnlinked when the transfer was still pending, otherwise kUrbOk.
Header EncodeUnlinked(std::uint32_t sequence, std::int32_t status);

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_MESSAGES_H_
