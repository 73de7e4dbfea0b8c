#ifndef KELVA_APPS_CAMERA_FILE_SIZES_H_
#define KELVA_APPS_CAMERA_FILE_SIZES_H_

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "apps/camera/ListedSizes.h"
#include "apps/camera/Picture.h"
#include "apps/commandline/Stop.h"
#include "src/wifi/Camera.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// The sizes of a picture's files by type, JPG first; nothing where the camera lists none.
using FileSizes = std::array<std::optional<unsigned long long>, 4>;
inline const std::optional<unsigned long long>& SizeOf(const FileSizes& sizes, int type) {
  return sizes[static_cast<std::size_t>(type - kFirstFileType)];
}

/// The sizes of the files in a folder of pictures ("100ABCDE"); none when it cannot be listed. Throws CameraError when the camera
/// has gone.
SizesByName ListPictureFolder(Camera& camera, const std::string& folder);
/// Those of a picture in it.
FileSizes SizesIn(const SizesByName& listing, const DcfObj& picture);

/// The sizes of every picture's files, in the catalogue's order: one listing for each folder, kept only as far as the
/// catalogue goes. A folder that cannot be listed leaves its sizes unknown. Throws Stopped, and CameraError when the
/// camera has gone.
std::vector<FileSizes> ReadFileSizes(const Stop& stop, Camera& camera, const std::vector<DcfObj>& catalogue);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_FILE_SIZES_H_
