// The four tables that a bundle can begin with, and the public functions that decode them without a length.

#include "BundleTables.h"

#include <algorithm>
#include <cstring>

#include "LittleEndian.h"

namespace kelva {
namespace {

constexpr std::size_t kWord = 4;
constexpr std::size_t kNameWidth = 32;
constexpr std::size_t kNamedEntry = kWord + kNameWidth;
constexpr std::size_t kCalibrationEntries = 31;
constexpr unsigned kParts = 2;

/// The text of a name field: up to its first NUL, or the whole width. Reads nothing behind the NUL.
std::string NameText(const char* field) {
  const void* nul = std::memchr(field, '\0', kNameWidth);
  return nul != nullptr ? std::string(field) : std::string(field, kNameWidth);
}

/// Reads `count` (size, name) entries; the caller has checked that they are present.
std::vector<_Sha1obj> NamedEntries(const char* table, std::size_t count) {
  std::vector<_Sha1obj> entries;
  entries.reserve(count);
  for (const char* entry = table; entries.size() < count; entry += kNamedEntry) {
    entries.push_back({{}, NameText(entry + kWord), LoadU32(entry)});
  }
  return entries;
}

}  // namespace

std::optional<BundleTable> DecodeCrashLogTable(std::span<const char> bundle) {
  if (bundle.size() < kWord) return std::nullopt;
  const std::uint64_t bodyStart = kNamedEntry * std::uint64_t{LoadU32(bundle.data())};
  if (bundle.size() < bodyStart) return std::nullopt;
  // The last name field ends four bytes behind the start of the bodies. Bodies of fewer than four bytes end the bundle
  // inside that field; the table is complete if the name has ended by then.
  if (bodyStart != 0 && bundle.size() < kWord + bodyStart) {
    const std::span<const char> lastName = bundle.subspan(static_cast<std::size_t>(bodyStart) - kNameWidth + kWord);
    if (std::find(lastName.begin(), lastName.end(), '\0') == lastName.end()) return std::nullopt;
  }
  return BundleTable{UnpackCrashLogHeader(bundle.data()), bodyStart};
}

std::optional<BundleTable> DecodeCalibrationTable(std::span<const char> bundle) {
  if (bundle.size() < kNamedEntry * kCalibrationEntries) return std::nullopt;
  return BundleTable{UnpackCalibrationHeader(bundle.data()), kNamedEntry * kCalibrationEntries};
}

std::optional<BundleTable> DecodeBatchTable(const std::vector<std::string>& keys, std::span<const char> bundle) {
  if (bundle.size() / kWord < keys.size()) return std::nullopt;
  const std::vector<unsigned int> sizes = UnpackBatchHeader(static_cast<unsigned int>(keys.size()), bundle.data());
  BundleTable table{{}, kWord * keys.size()};
  table.entries.reserve(keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i) table.entries.push_back({{}, keys[i], sizes[i]});
  return table;
}

std::optional<BundleTable> DecodeCompressedRawTable(const std::string& key, std::span<const char> bundle) {
  if (bundle.size() < kWord * kParts) return std::nullopt;
  const std::vector<unsigned int> sizes = UnpackRawCompressionHeader(bundle.data());
  return BundleTable{{{{}, key, sizes[0]}, {{}, key, sizes[1]}}, kWord * kParts};
}

}  // namespace kelva

std::vector<_Sha1obj> UnpackCrashLogHeader(const char* data) {
  return kelva::NamedEntries(data + kelva::kWord, kelva::LoadU32(data));
}

std::vector<_Sha1obj> UnpackCalibrationHeader(const char* data) {
  return kelva::NamedEntries(data, kelva::kCalibrationEntries);
}

std::vector<unsigned int> UnpackBatchHeader(unsigned int count, const char* data) {
  std::vector<unsigned int> values;
  values.reserve(count);
  for (; values.size() < count; data += kelva::kWord) values.push_back(kelva::LoadU32(data));
  return values;
}

std::vector<unsigned int> UnpackRawCompressionHeader(const char* data) {
  return UnpackBatchHeader(kelva::kParts, data);
}
