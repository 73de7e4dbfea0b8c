#ifndef KELVA_APPS_CAMERA_PICTURE_H_
#define KELVA_APPS_CAMERA_PICTURE_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "src/wifi/DcfObj.h"

namespace apps {

/// The four files that a picture can have, as the library numbers them.
inline constexpr int kFirstFileType = 1;
inline constexpr int kLastFileType = 4;
/// "JPG", "RAW", "TXT", "128".
std::string_view FileTypeName(int type);
/// The types that a picture has, in order.
std::vector<int> FileTypes(const DcfObj& picture);

/// "100ABCDE". The camera's bytes, not to be trusted.
std::string PictureFolder(const DcfObj& picture);
/// "IMG_0001".
std::string PictureStem(const DcfObj& picture);
/// "IMG_0001.JPG".
std::string PictureFileName(const DcfObj& picture, int type);
/// "I:\DCIM\100ABCDE\IMG_0001.JPG".
std::string PicturePath(const DcfObj& picture, int type);

/// The SHA-1 key of the picture's first file, when the catalogue carries one (a text in the field of type 7).
std::optional<std::string> PictureKey(const DcfObj& picture);
/// When the picture was taken, "2026-03-14 15:09:26", when the catalogue says so (a text in the field of type 8).
std::optional<std::string> PictureTime(const DcfObj& picture);

/// The 128 bytes of a picture's entry in the catalogue.
std::string_view EntryBytes(const DcfObj& picture);

/// Distinguishes this picture from an earlier one of the same name: its key, else the whole catalogue record.
std::string PictureFingerprint(const DcfObj& picture);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_PICTURE_H_
