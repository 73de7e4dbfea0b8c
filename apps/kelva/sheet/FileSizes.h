#ifndef KELVA_APPS_KELVA_SHEET_FILE_SIZES_H_
#define KELVA_APPS_KELVA_SHEET_FILE_SIZES_H_

#include <array>
#include <optional>
#include <vector>

#include "apps/commandline/Stop.h"
#include "src/wifi/Camera.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// The sizes of a picture's files by type, JPG first; nothing where the camera lists none.
using FileSizes = std::array<std::optional<unsigned long long>, 4>;

/// The sizes of every picture's files, in the catalogue's order: one listing for each folder, kept only as far as the
/// catalogue goes. A folder that cannot be listed leaves its sizes unknown. Throws Stopped, and CameraError when the
/// camera has gone.
std::vector<FileSizes> ReadFileSizes(const Stop& stop, Camera& camera, const std::vector<DcfObj>& catalogue);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_SHEET_FILE_SIZES_H_
