#ifndef KELVA_WIFI_TESTING_BYTES_H_
#define KELVA_WIFI_TESTING_BYTES_H_

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

// Byte strings written by hand, as they travel.

namespace wifi_testing {

/// Bytes({0xC6, 0x00, 0x04}).
inline std::string Bytes(std::initializer_list<int> values) {
  std::string bytes;
  for (const int value : values) bytes.push_back(static_cast<char>(value));
  return bytes;
}

/// A text as it is sent: with its NUL.
inline std::string Text(const std::string& text) {
  return text + '\0';
}

/// A text in a field of fixed width, filled up with zeros.
inline std::string Field(const std::string& text, std::size_t width) {
  return text + std::string(width - text.size(), '\0');
}

/// A 32-bit little-endian number, for fillers; a number that a test is about is written byte by byte.
inline std::string Le32(std::uint32_t value) {
  return Bytes({static_cast<int>(value & 0xFF), static_cast<int>((value >> 8) & 0xFF),
                static_cast<int>((value >> 16) & 0xFF), static_cast<int>(value >> 24)});
}

/// `count` bytes that differ from their neighbours and do not repeat with a power of two.
inline std::string Pattern(std::size_t count) {
  std::string bytes(count, '\0');
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>(i % 251);
  return bytes;
}

inline std::string ToString(const std::vector<char>& bytes) {
  return {bytes.begin(), bytes.end()};
}

/// "c6 00 04", for messages.
inline std::string Hex(const std::string& bytes) {
  std::string text;
  for (const char byte : bytes.substr(0, 64)) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02x ", static_cast<unsigned>(static_cast<unsigned char>(byte)));
    text += digits;
  }
  return text + "(" + std::to_string(bytes.size()) + " bytes)";
}

}  // namespace wifi_testing

#endif  // KELVA_WIFI_TESTING_BYTES_H_
