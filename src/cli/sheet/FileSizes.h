#ifndef KELVA_CLI_SHEET_FILE_SIZES_H_
#define KELVA_CLI_SHEET_FILE_SIZES_H_

#include <array>
#include <optional>
#include <vector>

#include "Camera.h"
#include "DcfObj.h"
#include "frame/Stop.h"

namespace kelva {

/// The sizes of a picture's files by type, JPG first; nothing where the camera lists none.
using FileSizes = std::array<std::optional<unsigned long long>, 4>;

/// The sizes of every picture's files, in the catalogue's order: one listing for each folder, kept only as far as the
/// catalogue goes. A folder that cannot be listed leaves its sizes unknown. Throws Stopped, and CameraError when the
/// camera has gone.
std::vector<FileSizes> ReadFileSizes(const Stop& stop, Camera& camera, const std::vector<DcfObj>& catalogue);

}  // namespace kelva

#endif  // KELVA_CLI_SHEET_FILE_SIZES_H_
