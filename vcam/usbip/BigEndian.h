#ifndef KELVA_VCAM_USBIP_BIG_ENDIAN_H_
#define KELVA_VCAM_USBIP_BIG_ENDIAN_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "base/Bytes.h"

// Numbers of the USB/IP headers and of SCSI command blocks, which are big-endian.

namespace vcam::usbip {

/// Reads the number at `offset`, which must be wholly inside `bytes`.
template <typename Number>
Number LoadBig(std::span<const std::uint8_t> bytes, std::size_t offset) {
  std::uint64_t value = 0;
  for (const std::uint8_t byte : bytes.subspan(offset, sizeof(Number))) value = value << 8 | byte;
  return static_cast<Number>(value);
}

/// Writes the number at `offset`, which must be wholly inside `bytes`.
template <typename Number>
void StoreBig(std::span<std::uint8_t> bytes, std::size_t offset, Number value) {
  auto rest = static_cast<std::uint64_t>(value);
  const auto field = bytes.subspan(offset, sizeof(Number));
  for (std::size_t i = field.size(); i-- > 0; rest >>= 8) field[i] = static_cast<std::uint8_t>(rest);
}

template <typename... Numbers>
void AppendBig(base::Bytes& bytes, Numbers... values) {
  std::size_t offset = bytes.size();
  bytes.resize(offset + (sizeof values + ...));
  ((StoreBig(std::span<std::uint8_t>(bytes), offset, values), offset += sizeof values), ...);
}

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_BIG_ENDIAN_H_
