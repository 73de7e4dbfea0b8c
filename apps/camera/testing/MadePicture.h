#ifndef KELVA_APPS_CAMERA_TESTING_MADE_PICTURE_H_
#define KELVA_APPS_CAMERA_TESTING_MADE_PICTURE_H_

#include <cstring>
#include <string_view>

#include "src/wifi/DcfObj.h"

namespace apps {

/// A picture of a catalogue: 100ABCDE/IMG_`number` with a JPEG file, and in its entry the key, if one is given.
inline DcfObj MadePicture(int number, int folder = 100, std::string_view key = {}) {
  DcfObj picture{};
  std::memcpy(picture.directorySuffix, "ABCDE", 5);
  std::memcpy(picture.filePrefix, "IMG_", 4);
  picture.directoryNumber = folder;
  picture.fileNumber = number;
  picture.hasJpg = 1;
  key.copy(picture.block7, sizeof picture.block7);
  return picture;
}

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_TESTING_MADE_PICTURE_H_
