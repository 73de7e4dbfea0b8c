#ifndef KELVA_WIFI_TESTING_READING_H_
#define KELVA_WIFI_TESTING_READING_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Bytes.h"
#include "FileReader.h"

namespace wifi_testing {

inline constexpr char kPath[] = "I:\\DCIM\\100ABCDE\\IMG_0001.JPG";

inline std::string ReadOn(kelva::FileReader& reader, std::size_t count) {
  std::vector<char> piece(count);
  piece.resize(reader.ReadOn(piece));
  return ToString(piece);
}

inline std::string ReadAt(kelva::FileReader& reader, std::uint64_t offset, std::size_t count) {
  std::vector<char> piece(count);
  piece.resize(reader.Read(offset, piece));
  return ToString(piece);
}

/// The reason of the FileReadError that `command` throws.
template <typename Command>
std::optional<kelva::FileReadError::Reason> ReasonOf(Command command) {
  try {
    command();
  } catch (const kelva::FileReadError& error) {
    return error.Why();
  }
  return std::nullopt;
}

}  // namespace wifi_testing

#endif  // KELVA_WIFI_TESTING_READING_H_
