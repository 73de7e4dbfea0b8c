#ifndef KELVA_VCAM_DEVICE_CAMERA_PATH_H_
#define KELVA_VCAM_DEVICE_CAMERA_PATH_H_

#include <optional>
#include <string>
#include <string_view>

namespace vcam {

/// The folder inside the storage that holds the camera's own state and that no command can see.
inline constexpr std::string_view kStateFolder = ".kelva";

/// The path below the storage folder that a camera path names: "I:\DCIM\A.JPG" is "DCIM/A.JPG", "I:\" is "".
///
/// The drive letter is I, in either case; names are taken byte for byte, case included. Doubled and trailing
/// backslashes are ignored. Nothing is returned for another drive, a relative path, "." or "..", a name with '/',
/// control characters or more than 255 bytes, a path of more than 1,024 bytes, and the state folder.
std::optional<std::string> RelativePath(std::string_view cameraPath);

/// The reverse, for paths that the camera itself names.
std::string CameraPath(std::string_view relative);

/// Whether a directory entry of this name is a file of the camera: what RelativePath would take as one name.
bool IsCameraName(std::string_view name);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_CAMERA_PATH_H_
