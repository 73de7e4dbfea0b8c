#ifndef KELVA_WIFI_CAMERA_DIRENT_H_
#define KELVA_WIFI_CAMERA_DIRENT_H_

#include <string>

/// One entry of a directory listing, by value, as the camera gives it.
struct CameraDirent {
  std::string name;  ///< without a directory part; bytes from the camera, not safe as a file name
  int size;          ///< bytes
  int attributes;    ///< FAT attribute bits (kelva::kAttribute...), as they came
};

namespace kelva {

/// The attribute bits of an entry. The library looks at two of them: kAttributeVolumeLabel and kAttributeDirectory.
inline constexpr int kAttributeReadOnly = 0x01;
inline constexpr int kAttributeHidden = 0x02;
inline constexpr int kAttributeSystem = 0x04;
inline constexpr int kAttributeVolumeLabel = 0x08;
inline constexpr int kAttributeDirectory = 0x10;
inline constexpr int kAttributeArchive = 0x20;

}  // namespace kelva

#endif  // KELVA_WIFI_CAMERA_DIRENT_H_
