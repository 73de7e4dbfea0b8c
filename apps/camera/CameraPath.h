#ifndef KELVA_APPS_CAMERA_CAMERA_PATH_H_
#define KELVA_APPS_CAMERA_CAMERA_PATH_H_

#include <optional>
#include <string>
#include <string_view>

#include "src/wifi/Camera.h"
#include "src/wifi/CameraDirent.h"

namespace apps {

/// A path as a person types it, made a camera's: forward slashes become backslashes (no file of a camera can have one
/// in its name) and trailing ones go. Throws Failure(kUsage) for an empty path and one without a drive ("I:").
std::string ToCameraPath(std::string_view typed);

struct SplitPath {
  std::string folder;  ///< "I:" for what lies directly on the drive
  std::string name;    ///< empty for the drive itself
};
SplitPath Split(std::string_view cameraPath);

/// Whether two names mean the same file: cameras ignore the case of ASCII letters, as FAT does.
bool SameName(std::string_view a, std::string_view b);

/// The entry of a file or folder in the listing of its parent, or nothing when it is not there.
std::optional<CameraDirent> FindEntry(Camera& camera, std::string_view cameraPath);
/// Throws Failure unless this folder and all above it are on the camera, which itself only says that it refused.
void RequireFolder(Camera& camera, std::string_view folder);

/// An entry's size; files of 2 GiB and more arrive as negative numbers.
unsigned long long SizeOf(const CameraDirent& entry);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_CAMERA_PATH_H_
