#ifndef KELVA_VCAM_CAMERA_IN_PROCESS_H_
#define KELVA_VCAM_CAMERA_IN_PROCESS_H_

#include <functional>
#include <memory>

#include "bus/UserClientDoor.h"
#include "vcam/camera/VirtualCamera.h"

namespace vcam {

/// A session with a camera of this process. The camera gives it to one holder at a time.
std::unique_ptr<bus::CommandSession> MakeInProcessSession(std::shared_ptr<VirtualCamera> camera);

/// What a registry entry needs to open a camera that lives in this process (EntryDescription::openUserClient). Each call
/// makes one user client, which keeps the camera alive.
std::function<std::unique_ptr<darwin::UserClient>(int& error)> OpenInProcess(std::shared_ptr<VirtualCamera> camera);

}  // namespace vcam

#endif  // KELVA_VCAM_CAMERA_IN_PROCESS_H_
