#ifndef KELVA_BASE_BYTES_H_
#define KELVA_BASE_BYTES_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

// Little-endian numbers at any alignment, in either direction.

namespace base {

using Bytes = std::vector<std::uint8_t>;

/// Reads the number at `offset`, which must be wholly inside `bytes`.
template <typename Number>
Number Load(std::span<const std::uint8_t> bytes, std::size_t offset) {
  static_assert(std::endian::native == std::endian::little);
  Number value;
  std::memcpy(&value, bytes.subspan(offset, sizeof(Number)).data(), sizeof(Number));
  return value;
}

/// Writes the number at `offset`, which must be wholly inside `bytes`.
template <typename Number>
void Store(std::span<std::uint8_t> bytes, std::size_t offset, Number value) {
  std::memcpy(bytes.subspan(offset, sizeof(Number)).data(), &value, sizeof(Number));
}

template <typename... Numbers>
void Append(Bytes& bytes, Numbers... values) {
  std::size_t offset = bytes.size();
  bytes.resize(offset + (sizeof values + ...));
  ((Store(std::span<std::uint8_t>(bytes), offset, values), offset += sizeof values), ...);
}

inline void AppendText(Bytes& bytes, std::string_view text) {
  bytes.insert(bytes.end(), text.begin(), text.end());
}

/// Appends the text and a NUL.
inline void AppendString(Bytes& bytes, std::string_view text) {
  AppendText(bytes, text);
  bytes.push_back(0);
}

}  // namespace base

#endif  // KELVA_BASE_BYTES_H_
