#ifndef KELVA_APPS_CAMERA_REMOTE_FILE_H_
#define KELVA_APPS_CAMERA_REMOTE_FILE_H_

#include <string>
#include <vector>

#include "apps/commandline/Context.h"
#include "src/wifi/Camera.h"

namespace apps {

/// Reads a whole file, which the library hands over in one piece of memory. The listing of its folder tells an empty
/// file from a missing one, and a file that changed meanwhile is read once more. Throws Failure: missing, a folder,
/// changing.
std::vector<char> ReadRemoteFile(Context& context, Camera& camera, const std::string& path);

/// Writes a file, reads it back and compares, because writing itself reports nothing. Throws Failure when the camera
/// holds something else afterwards. A write that is stopped half-way is removed from the camera.
void WriteRemoteFile(Context& context, Camera& camera, const std::vector<char>& bytes, const std::string& path);

/// Deletes a file that the listing shows. Throws Failure: missing, a folder, still there afterwards.
void DeleteRemoteFile(Camera& camera, const std::string& path);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_REMOTE_FILE_H_
