#ifndef KELVA_WIFI_FILE_WRITER_H_
#define KELVA_WIFI_FILE_WRITER_H_

#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "Camera.h"

namespace kelva {

/// Fills all of `chunk` with the next bytes of what is sent. Called on the thread of the transfer, right before each chunk
/// goes out; nothing is asked for ahead of that. `chunk` is valid during the call only. An exception ends the transfer and
/// reaches its caller.
using ByteSource = std::function<void(std::span<char> chunk)>;

/// Writes a file on the camera, `length` bytes of `source`: the commands of Camera::WriteFile, and memory for one chunk.
///
/// Progress: as Camera::WriteFile; `progress` may be null. It is called before the source is asked.
///
/// Errors: a failed transfer throws CameraTransferError. That, and an exception of source or progress, leaves a part of
/// the file on the camera: delete it. As with Camera::WriteFile nothing says whether the camera kept the bytes: read the
/// file back (FileReader.h).
void WriteFile(Camera& camera, const std::string& path, std::uint32_t length, const ByteSource& source,
               void (*progress)(void*, float) = nullptr, void* context = nullptr);

/// Sends a firmware image, `length` bytes of `source`: the commands of Camera::Upgrade, and memory for one chunk. Progress
/// and errors are those of WriteFile; a camera keeps its firmware when an image is incomplete. Whether it took the image
/// says Camera::UpgradeStatus.
void Upgrade(Camera& camera, std::uint32_t length, const ByteSource& source, void (*progress)(void*, float) = nullptr,
             void* context = nullptr);

}  // namespace kelva

#endif  // KELVA_WIFI_FILE_WRITER_H_
