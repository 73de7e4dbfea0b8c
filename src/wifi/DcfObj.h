#ifndef KELVA_WIFI_DCF_OBJ_H_
#define KELVA_WIFI_DCF_OBJ_H_

#include <cstddef>
#include <type_traits>

/// One picture of the camera's catalogue, a plain record copied by value. A field that the catalogue does not carry is
/// zero. The first 24 bytes identify the picture: DeleteDcfObject sends them back to the camera unchanged, so the
/// layout is fixed.
struct DcfObj {
  char directorySuffix[8];  ///< NUL-terminated; the text after the three digits of the directory's name
  char filePrefix[8];       ///< NUL-terminated; the text before the four digits of the file's name
  int directoryNumber;      ///< printed with three digits
  int fileNumber;           ///< printed with four digits
  unsigned int hasJpg;      ///< not 0 when the picture has a "JPG" file (file type 1)
  unsigned int hasRaw;      ///< not 0 when the picture has a "RAW" file (file type 2)
  unsigned int hasTxt;      ///< not 0 when the picture has a "TXT" file (file type 3)
  unsigned int has128;      ///< not 0 when the picture has a "128" file (file type 4)
  unsigned int value5;      ///< not interpreted by the library, like the four fields below
  float value6;
  char block7[48];
  char block8[28];
  unsigned int value9;
};

static_assert(sizeof(DcfObj) == 128);
static_assert(offsetof(DcfObj, filePrefix) == 8 && offsetof(DcfObj, directoryNumber) == 16 &&
              offsetof(DcfObj, fileNumber) == 20 && offsetof(DcfObj, hasJpg) == 24 && offsetof(DcfObj, hasRaw) == 28 &&
              offsetof(DcfObj, hasTxt) == 32 && offsetof(DcfObj, has128) == 36 && offsetof(DcfObj, value5) == 40 &&
              offsetof(DcfObj, value6) == 44 && offsetof(DcfObj, block7) == 48 && offsetof(DcfObj, block8) == 96 &&
              offsetof(DcfObj, value9) == 124);
static_assert(std::is_trivially_copyable_v<DcfObj>);

#pragma pack(push, 1)
/// The start of the catalogue answer. `fieldCount` descriptors of 8 bytes (type, offset; both unsigned 32-bit) follow,
/// then the picture records. Packed, so that a pointer to it needs no alignment.
struct _VscCdbDcfHeader {
  int version;     ///< must be 1
  int stride;      ///< bytes per picture record
  int fieldCount;  ///< descriptors that follow
};
#pragma pack(pop)

static_assert(sizeof(_VscCdbDcfHeader) == 12 && alignof(_VscCdbDcfHeader) == 1);
static_assert(std::is_trivially_copyable_v<_VscCdbDcfHeader>);

#endif  // KELVA_WIFI_DCF_OBJ_H_
