#ifndef KELVA_APPS_CAMERA_CAMERA_PATH_H_
#define KELVA_APPS_CAMERA_CAMERA_PATH_H_

#include <optional>
#include <string>
#include <string_view>

#include "src/wifi/Camera.h"
#include "src/wifi/CameraDirent.h"

namespace apps {

/// Turns a path as people type it, or as ShownPath wrote it, into the camera's. Slashes become backslashes, and trailing ones
/// are removed. The drive may be left out: "DCIM" and "/DCIM" are on I:. In a path with a forward slash, what ShownPath
/// writes for a byte that cannot be shown (\\xNN, \\u{N}) stands for that byte. Throws Failure(kUsage) for an empty path.
std::string ToCameraPath(std::string_view typed);

/// A camera's path for people: forward slashes, safe on a terminal, and in quotes where a shell needs them. Typed again,
/// it means the same file.
std::string ShownPath(std::string_view cameraPath);
/// The same for the name of one file or folder.
inline std::string ShownName(std::string_view name) {
  return ShownPath(name);
}

struct SplitPath {
  std::string folder;  ///< "I:" for an entry directly on the drive
  std::string name;    ///< empty for the drive itself
};
SplitPath Split(std::string_view cameraPath);

/// Whether two names mean the same file. Cameras ignore the case of ASCII letters, as FAT does.
bool SameName(std::string_view a, std::string_view b);

/// Looks a file or folder up in the listing of its parent folder, exactly as it is written or else in another case of
/// letters. Nothing when the listing does not have it.
std::optional<CameraDirent> FindEntry(Camera& camera, std::string_view cameraPath);
/// Gives a folder's path as the camera lists it. Throws Failure that names the folder when it, or one above it, is
/// missing. The camera would only say that it refused.
std::string RequireFolder(Camera& camera, std::string_view folder);

/// Whether an entry is a file or a folder below the one that lists it, and not its label, itself or its parent.
bool IsNamed(const CameraDirent& entry);

/// An entry's size in bytes. CameraDirent::size is negative for files of 2 GiB and more.
unsigned long long SizeOf(const CameraDirent& entry);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_CAMERA_PATH_H_
