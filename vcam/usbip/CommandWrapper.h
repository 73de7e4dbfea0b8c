#ifndef KELVA_VCAM_USBIP_COMMAND_WRAPPER_H_
#define KELVA_VCAM_USBIP_COMMAND_WRAPPER_H_

#include <cstdint>
#include <optional>
#include <span>

#include "base/Bytes.h"
#include "wire/Command.h"

// The two records of the bulk-only transport: the wrapper that brings a command, the one that brings its status.

namespace vcam::usbip {

inline constexpr std::size_t kCommandWrapperSize = 31;
inline constexpr std::size_t kStatusWrapperSize = 13;

struct CommandWrapper {
  std::uint32_t tag = 0;
  /// Bytes of the data phase that the host announces.
  std::uint32_t length = 0;
  /// kNone when `length` is 0.
  wire::Direction direction = wire::Direction::kNone;
  /// Zero behind the bytes that the host sent.
  std::array<std::uint8_t, 16> cdb{};
};

enum class WrapperStatus : std::uint8_t { kPassed = 0, kFailed = 1, kPhaseError = 2 };

struct StatusWrapper {
  std::uint32_t tag = 0;
  std::uint32_t residue = 0;
  WrapperStatus status = WrapperStatus::kPassed;
};

/// Reads a command wrapper; nothing when it is not valid and meaningful (size, signature, unit 0, command length, flags).
std::optional<CommandWrapper> DecodeCommand(std::span<const std::uint8_t> bytes);
base::Bytes EncodeStatus(const StatusWrapper& status);

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_COMMAND_WRAPPER_H_
