#ifndef KELVA_APPS_CAMERA_FOLDER_LISTING_H_
#define KELVA_APPS_CAMERA_FOLDER_LISTING_H_

#include <string>
#include <vector>

#include "src/wifi/Camera.h"

namespace apps {

/// The largest listing of one folder that the tool reads: a hundred times that of the fullest folder of a camera.
inline constexpr std::size_t kLargestListing = std::size_t{64} << 20;

/// As Camera::ReadDir, within a bound. Throws CameraError when the listing goes on after kLargestListing.
std::vector<CameraDirent> ListFolder(Camera& camera, const std::string& path);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_FOLDER_LISTING_H_
