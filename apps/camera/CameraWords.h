#ifndef KELVA_APPS_CAMERA_CAMERA_WORDS_H_
#define KELVA_APPS_CAMERA_CAMERA_WORDS_H_

#include <string>
#include <vector>

#include "src/wifi/Camera.h"

namespace apps {

// What a shell may offer while a word is typed. Names are a camera's bytes, not to be trusted.

/// The files and folders that `typed` may become, with what stands before them as it was typed; folders end in a slash.
std::vector<std::string> PathsBeginning(Camera& camera, const std::string& typed);

/// The pictures that `typed` may become: names, and folders with a slash; behind a folder the pictures in it.
std::vector<std::string> PicturesBeginning(Camera& camera, const std::string& typed);

/// The names of the folders below DCIM.
std::vector<std::string> PictureFolders(Camera& camera);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_CAMERA_WORDS_H_
