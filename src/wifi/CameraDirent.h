#ifndef KELVA_WIFI_CAMERA_DIRENT_H_
#define KELVA_WIFI_CAMERA_DIRENT_H_

#include <string>

/// One entry of a directory listing, by value, as the camera gives it.
struct CameraDirent {
  std::string name;  ///< without any directory part; the camera's bytes, so not to be trusted as a file name
  int size;          ///< bytes
  int attributes;    ///< FAT attribute bits: 0x10 directory, 0x08 volume label, the others as they came
};

#endif  // KELVA_WIFI_CAMERA_DIRENT_H_
