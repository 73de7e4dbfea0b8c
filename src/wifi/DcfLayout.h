#ifndef KELVA_WIFI_DCF_LAYOUT_H_
#define KELVA_WIFI_DCF_LAYOUT_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "DcfObj.h"

namespace kelva {

/// The size of the header with its field table, 12 + 8 x field count. A hostile count makes it negative or huge; in 64
/// bits it cannot overflow.
std::int64_t DcfHeaderSize(const _VscCdbDcfHeader& header);

/// The size of a field of this type; 0 for an unknown type.
std::uint32_t DcfFieldSize(std::uint32_t type);

/// One descriptor of the field table.
struct DcfField {
  std::uint32_t type;
  std::uint32_t offset;
};

/// Descriptor `index` of the field table, which must be complete.
DcfField DcfFieldAt(const _VscCdbDcfHeader* header, int index);

/// Where each known field lies in a record. Computed once for a catalogue and used for each of its records. Of several
/// descriptors of one type the last one counts. A field whose end (offset + size) exceeds 32 bits is skipped.
class DcfLayout {
 public:
  explicit DcfLayout(const _VscCdbDcfHeader* header);

  /// Decodes one record, which must hold every field of the header.
  DcfObj Decode(const char* record) const;

 private:
  static constexpr std::size_t kTypes = 10;
  static constexpr std::int64_t kAbsent = -1;

  std::array<std::int64_t, kTypes> offsets_;
};

}  // namespace kelva

#endif  // KELVA_WIFI_DCF_LAYOUT_H_
