#include "benchmarks/Answers.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <utility>

namespace bench {

namespace {

constexpr std::size_t kNameWidth = 32;
constexpr std::size_t kCalibrationFiles = 31;
constexpr std::uint32_t kDirectory = 0x10;
constexpr std::uint32_t kArchive = 0x20;

void Append(std::string& bytes, std::size_t value) {
  const auto word = static_cast<std::uint32_t>(value);
  for (unsigned shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<char>(word >> shift & 0xFF));
}

void AppendText(std::string& bytes, std::string text, std::size_t width) {
  text.resize(width);
  bytes += text;
}

void AppendEntry(std::string& table, std::size_t index, std::size_t size) {
  Append(table, size);
  AppendText(table, "FILE" + std::to_string(index) + ".BIN", kNameWidth);
}

std::string Table(std::size_t files, std::size_t each) {
  std::string table;
  for (std::size_t i = 0; i < files; ++i) AppendEntry(table, i, each);
  return table;
}

}  // namespace

std::string Noise(std::size_t size) {
  std::mt19937_64 random(20);
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i + sizeof(std::uint64_t) <= size; i += sizeof(std::uint64_t)) {
    const std::uint64_t word = random();
    std::memcpy(bytes.data() + i, &word, sizeof word);
  }
  return bytes;
}

std::string Catalogue(std::size_t pictures) {
  // Type and offset of each field: the record has the order of DcfObj.
  constexpr std::array<std::pair<std::size_t, std::size_t>, 10> kFields = {
      {{0, 0}, {1, 24}, {2, 28}, {3, 32}, {4, 36}, {5, 40}, {6, 44}, {7, 48}, {8, 96}, {9, 124}}};
  constexpr std::size_t kStride = 128;
  std::string bytes;
  bytes.reserve(12 + kFields.size() * 8 + pictures * kStride);
  Append(bytes, 1);
  Append(bytes, kStride);
  Append(bytes, kFields.size());
  for (const auto& [type, offset] : kFields) {
    Append(bytes, type);
    Append(bytes, offset);
  }
  for (std::size_t i = 0; i < pictures; ++i) {
    AppendText(bytes, "KELVA", 8);
    AppendText(bytes, "IMG_", 8);
    Append(bytes, 100 + i / 9999);
    Append(bytes, 1 + i % 9999);
    Append(bytes, 1);
    bytes.append(kStride - 28, '\x11');
  }
  return bytes;
}

std::string Listing(const std::vector<Entry>& entries) {
  std::string table;
  std::string names;
  Append(table, 0);
  Append(table, entries.size());
  for (const Entry& entry : entries) {
    Append(table, entry.directory ? kDirectory : kArchive);
    Append(table, 4096);
    Append(table, 8 + 12 * entries.size() + names.size());
    names += entry.name;
    names.push_back('\0');
  }
  return table + names;
}

std::string CrashLogBundle(std::size_t files, std::size_t each) {
  std::string bundle;
  Append(bundle, files);
  bundle += Table(files, each);
  // The camera starts the bodies four bytes before the end of its table, so the last name loses its padding.
  bundle.resize(36 * files);
  return bundle + Noise(files * each);
}

std::string CalibrationBundle(std::size_t each) {
  return Table(kCalibrationFiles, each) + Noise(kCalibrationFiles * each);
}

std::string BatchBundle(std::size_t files, std::size_t each) {
  std::string bundle;
  for (std::size_t i = 0; i < files; ++i) Append(bundle, each);
  return bundle + Noise(files * each);
}

}  // namespace bench
