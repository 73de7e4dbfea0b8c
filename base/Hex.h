#ifndef KELVA_BASE_HEX_H_
#define KELVA_BASE_HEX_H_

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "base/Ascii.h"

namespace base {

/// Two hexadecimal digits for each byte, in lower case.
inline std::string Hex(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0x0F];
  }
  return text;
}

inline std::string Hex(std::string_view bytes) {
  return Hex(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
}

/// One byte as %XX, the way URLs escape it.
inline std::string PercentHex(char byte) {
  return "%" + Upper(Hex(std::string_view(&byte, 1)));
}

}  // namespace base

#endif  // KELVA_BASE_HEX_H_
