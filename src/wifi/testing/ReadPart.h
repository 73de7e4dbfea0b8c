#ifndef KELVA_WIFI_TESTING_READ_PART_H_
#define KELVA_WIFI_TESTING_READ_PART_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "src/wifi/FileReader.h"

namespace kelva::test {

/// A file's content whose blocks differ from each other, so that a camera can prove that it honours offsets.
inline std::string DistinctBlocks(std::size_t size) {
  std::string text(size, '\0');
  for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i % 251);
  return text;
}

/// What one read gives.
inline std::string ReadPart(FileReader& reader, std::uint64_t offset, std::size_t count) {
  std::string piece(count, '\0');
  piece.resize(reader.Read(offset, piece));
  return piece;
}

}  // namespace kelva::test

#endif  // KELVA_WIFI_TESTING_READ_PART_H_
