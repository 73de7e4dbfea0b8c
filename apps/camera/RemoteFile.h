#ifndef KELVA_APPS_CAMERA_REMOTE_FILE_H_
#define KELVA_APPS_CAMERA_REMOTE_FILE_H_

#include <string>
#include <vector>

#include "apps/commandline/Context.h"
#include "src/wifi/Camera.h"

namespace apps {

/// A file's entry in the listing of its folder. Throws Failure for a missing file or a folder.
CameraDirent FileEntry(Camera& camera, const std::string& path);

/// Reads a whole file into memory. Uses the listing of its folder to tell an empty file from a missing one, and reads a
/// file that changed meanwhile once more. Throws Failure for a missing file, a folder, or a file that keeps changing.
std::vector<char> ReadRemoteFile(Context& context, Camera& camera, const std::string& path);

/// Writes a file, reads it back and compares, because Camera::WriteFile does not report failures. Throws Failure when
/// the bytes differ. Deletes the file when the write is stopped half-way.
void WriteRemoteFile(Context& context, Camera& camera, const std::vector<char>& bytes, const std::string& path);

/// Deletes a file. Throws Failure for a missing file, a folder, or a file that is still listed afterwards.
void DeleteRemoteFile(Camera& camera, const std::string& path);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_REMOTE_FILE_H_
