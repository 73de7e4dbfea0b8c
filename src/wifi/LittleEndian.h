#ifndef KELVA_WIFI_LITTLE_ENDIAN_H_
#define KELVA_WIFI_LITTLE_ENDIAN_H_

#include <bit>
#include <cstdint>

// Turns wire bytes into numbers and back. Pointers need no alignment.

namespace kelva {

inline std::uint32_t LoadU32(const void* from) {
  const auto* byte = static_cast<const unsigned char*>(from);
  return std::uint32_t{byte[0]} | std::uint32_t{byte[1]} << 8 | std::uint32_t{byte[2]} << 16 |
         std::uint32_t{byte[3]} << 24;
}

inline std::int32_t LoadI32(const void* from) {
  return static_cast<std::int32_t>(LoadU32(from));
}

inline std::uint64_t LoadU64(const void* from) {
  return LoadU32(from) | std::uint64_t{LoadU32(static_cast<const unsigned char*>(from) + 4)} << 32;
}

inline float LoadFloat(const void* from) {
  return std::bit_cast<float>(LoadU32(from));
}

inline double LoadDouble(const void* from) {
  return std::bit_cast<double>(LoadU64(from));
}

inline void StoreU32(void* to, std::uint32_t value) {
  auto* byte = static_cast<unsigned char*>(to);
  byte[0] = static_cast<unsigned char>(value);
  byte[1] = static_cast<unsigned char>(value >> 8);
  byte[2] = static_cast<unsigned char>(value >> 16);
  byte[3] = static_cast<unsigned char>(value >> 24);
}

}  // namespace kelva

#endif  // KELVA_WIFI_LITTLE_ENDIAN_H_
