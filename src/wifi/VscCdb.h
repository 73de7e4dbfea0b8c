#ifndef KELVA_WIFI_VSC_CDB_H_
#define KELVA_WIFI_VSC_CDB_H_

#include <type_traits>

/// The 16-byte command descriptor block of a vendor command, as it travels.
///
/// Byte 0 is the operation code, byte 1 is 0, byte 2 the sub-code. Parameters follow from byte 3, little-endian and
/// unaligned. Bytes that a command does not use are 0.
struct _VscCdb {
  unsigned char bytes[16];
};

static_assert(sizeof(_VscCdb) == 16);
static_assert(std::is_trivially_copyable_v<_VscCdb>);

#endif  // KELVA_WIFI_VSC_CDB_H_
