#ifndef KELVA_TESTS_KERNEL_CASES_DIGEST_H_
#define KELVA_TESTS_KERNEL_CASES_DIGEST_H_

#include <cstdint>
#include <span>
#include <string>

inline std::string HexOf(std::uint64_t value, int digits) {
  std::string text;
  for (int i = digits - 1; i >= 0; --i) text.push_back("0123456789abcdef"[value >> (4 * i) & 0xF]);
  return text;
}

inline std::string HexOf(unsigned char byte) {
  return HexOf(byte, 2);
}

/// FNV-1a: enough to tell one answer from another.
inline std::string DigestOf(std::span<const char> bytes) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
  return HexOf(hash, 16);
}

#endif  // KELVA_TESTS_KERNEL_CASES_DIGEST_H_
