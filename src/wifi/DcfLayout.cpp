// Decodes picture records by the field table of the catalogue's header.

#include "DcfLayout.h"

#include <cstring>
#include <iterator>

#include "LittleEndian.h"

namespace kelva {
namespace {

/// Where a field goes in DcfObj, and its size. The index is the field type.
struct Destination {
  std::size_t offset;
  std::uint32_t size;
};

constexpr Destination kDestinations[] = {
    {offsetof(DcfObj, directorySuffix), 24},  // the identity: both names and both numbers
    {offsetof(DcfObj, hasJpg), 4},
    {offsetof(DcfObj, hasRaw), 4},
    {offsetof(DcfObj, hasTxt), 4},
    {offsetof(DcfObj, has128), 4},
    {offsetof(DcfObj, value5), 4},
    {offsetof(DcfObj, value6), 4},
    {offsetof(DcfObj, block7), sizeof(DcfObj::block7)},
    {offsetof(DcfObj, block8), sizeof(DcfObj::block8)},
    {offsetof(DcfObj, value9), 4},
};

constexpr std::int64_t kDescriptorSize = 8;

}  // namespace

std::int64_t DcfHeaderSize(const _VscCdbDcfHeader& header) {
  return std::int64_t{sizeof(header)} + kDescriptorSize * std::int64_t{header.fieldCount};
}

std::uint32_t DcfFieldSize(std::uint32_t type) {
  return type < std::size(kDestinations) ? kDestinations[type].size : 0;
}

DcfField DcfFieldAt(const _VscCdbDcfHeader* header, int index) {
  const char* descriptor =
      reinterpret_cast<const char*>(header) + sizeof(*header) + kDescriptorSize * std::int64_t{index};
  return {LoadU32(descriptor), LoadU32(descriptor + 4)};
}

DcfLayout::DcfLayout(const _VscCdbDcfHeader* header) {
  static_assert(std::size(kDestinations) == kTypes);
  offsets_.fill(kAbsent);
  for (int i = 0; i < header->fieldCount; ++i) {
    const DcfField field = DcfFieldAt(header, i);
    const std::uint32_t size = DcfFieldSize(field.type);
    // ValidateDcfHeader adds in 32 bits too, so an end that wraps passes there and must not be read here.
    const bool wraps = field.offset + size < size;
    if (size != 0 && !wraps) offsets_[field.type] = field.offset;
  }
}

DcfObj DcfLayout::Decode(const char* record) const {
  DcfObj obj{};
  for (std::size_t type = 0; type < kTypes; ++type) {
    if (offsets_[type] != kAbsent) {
      std::memcpy(reinterpret_cast<char*>(&obj) + kDestinations[type].offset, record + offsets_[type],
                  kDestinations[type].size);
    }
  }
  return obj;
}

}  // namespace kelva
