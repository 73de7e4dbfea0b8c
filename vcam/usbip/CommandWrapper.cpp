// The two wrappers of the bulk-only transport as bytes.
#include "vcam/usbip/CommandWrapper.h"

#include <algorithm>

namespace vcam::usbip {
namespace {

constexpr std::uint32_t kCommandSignature = 0x43425355;  // "USBC"
constexpr std::uint32_t kStatusSignature = 0x53425355;   // "USBS"
constexpr std::uint8_t kIn = 0x80;

// Offsets within the command wrapper.
constexpr std::size_t kTag = 4;
constexpr std::size_t kLength = 8;
constexpr std::size_t kFlags = 12;
constexpr std::size_t kUnit = 13;
constexpr std::size_t kBlockLength = 14;
constexpr std::size_t kBlock = 15;

wire::Direction DirectionOf(std::uint8_t flags, std::uint32_t length) {
  if (length == 0) return wire::Direction::kNone;
  return flags == kIn ? wire::Direction::kFromCamera : wire::Direction::kToCamera;
}

}  // namespace

std::optional<CommandWrapper> DecodeCommand(std::span<const std::uint8_t> bytes) {
  if (bytes.size() != kCommandWrapperSize) return std::nullopt;
  if (base::Load<std::uint32_t>(bytes, 0) != kCommandSignature) return std::nullopt;
  const std::uint8_t flags = bytes[kFlags];
  const std::size_t blockLength = bytes[kBlockLength];
  CommandWrapper command;
  if ((flags & ~kIn) != 0 || bytes[kUnit] != 0) return std::nullopt;
  if (blockLength == 0 || blockLength > command.cdb.size()) return std::nullopt;
  command.tag = base::Load<std::uint32_t>(bytes, kTag);
  command.length = base::Load<std::uint32_t>(bytes, kLength);
  command.direction = DirectionOf(flags, command.length);
  std::copy_n(bytes.begin() + kBlock, blockLength, command.cdb.begin());
  return command;
}

base::Bytes EncodeStatus(const StatusWrapper& status) {
  base::Bytes bytes;
  base::Append(bytes, kStatusSignature, status.tag, status.residue, status.status);
  return bytes;
}

}  // namespace vcam::usbip
