#ifndef KELVA_APPS_CAMERA_FOLDER_LISTING_H_
#define KELVA_APPS_CAMERA_FOLDER_LISTING_H_

#include <string>
#include <vector>

#include "src/wifi/Camera.h"

namespace apps {

/// The largest listing of one folder that the tool reads: some fifty times that of a full folder of pictures.
inline constexpr std::size_t kLargestListing = std::size_t{16} << 20;

/// As Camera::ReadDir, within a bound. Throws CameraError when the listing goes on after kLargestListing.
std::vector<CameraDirent> ListFolder(Camera& camera, const std::string& path);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_FOLDER_LISTING_H_
