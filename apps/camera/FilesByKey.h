#ifndef KELVA_APPS_CAMERA_FILES_BY_KEY_H_
#define KELVA_APPS_CAMERA_FILES_BY_KEY_H_

#include <string>
#include <vector>

#include "src/wifi/Camera.h"

namespace apps {

/// Which of these keys belong to a file of the camera, in their order. Reads the table of sizes in front of the files, at
/// most one piece of them. False also for an empty file, and for every key when the camera does not answer with a whole
/// table. Throws CameraError.
std::vector<bool> HasFiles(Camera& camera, const std::vector<std::string>& keys);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_FILES_BY_KEY_H_
