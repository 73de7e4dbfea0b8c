#ifndef KELVA_APPS_CAMERA_CAMERA_PATH_H_
#define KELVA_APPS_CAMERA_CAMERA_PATH_H_

#include <optional>
#include <string>
#include <string_view>

#include "src/wifi/Camera.h"
#include "src/wifi/CameraDirent.h"

namespace apps {

/// Turns a path as people type it into the camera's: forward slashes, which no name can contain, become backslashes,
/// and trailing ones are removed. Throws Failure(kUsage) for an empty path or one without a drive ("I:").
std::string ToCameraPath(std::string_view typed);

struct SplitPath {
  std::string folder;  ///< "I:" for an entry directly on the drive
  std::string name;    ///< empty for the drive itself
};
SplitPath Split(std::string_view cameraPath);

/// Whether two names mean the same file. Cameras ignore the case of ASCII letters, as FAT does.
bool SameName(std::string_view a, std::string_view b);

/// Looks a file or folder up in the listing of its parent folder; nothing when the listing does not have it.
std::optional<CameraDirent> FindEntry(Camera& camera, std::string_view cameraPath);
/// Throws Failure that names the folder when it, or one above it, is missing. The camera would only say that it
/// refused.
void RequireFolder(Camera& camera, std::string_view folder);

/// An entry's size in bytes. CameraDirent::size is negative for files of 2 GiB and more.
unsigned long long SizeOf(const CameraDirent& entry);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_CAMERA_PATH_H_
