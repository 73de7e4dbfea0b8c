#ifndef KELVA_EMBED_CAMERA_SOURCE_H_
#define KELVA_EMBED_CAMERA_SOURCE_H_

#include <string>

namespace kelva {

/// Why this machine's cameras cannot be found, or why plugging one in goes unnoticed, in one sentence for a person. Empty
/// when all is well and before the first call that looks for cameras (`Camera::EnumerateCameras`, `Camera::GetCamera`,
/// `Camera::ListenForCameraAttach`).
///
/// A program that names no source finds the cameras of the machine: on Linux through udev, on macOS through IOKit. Where
/// no udev runs, in a container for instance, listening succeeds and nothing is ever reported: ask here after it. On macOS
/// always empty. Sentences about a single camera (no permission for its device) are lines on standard error. Any thread.
std::string LastSourceError();

}  // namespace kelva

#endif  // KELVA_EMBED_CAMERA_SOURCE_H_
