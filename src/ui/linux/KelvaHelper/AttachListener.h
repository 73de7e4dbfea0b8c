#ifndef KELVA_UI_LINUX_KELVA_HELPER_ATTACH_LISTENER_H_
#define KELVA_UI_LINUX_KELVA_HELPER_ATTACH_LISTENER_H_

#include <boost/shared_ptr.hpp>

#include "src/wifi/Camera.h"

namespace helper {

/// The attach callback: starts the desktop application when the flag that `context` points at is true. Keeps nothing of
/// the camera.
void Callback(boost::shared_ptr<Camera> camera, void* context);

/// Registers Callback on the calling thread's run loop. Cameras that are there already are reported before this
/// returns, and launch nothing; each later one launches once. Throws as Camera::ListenForCameraAttach does.
void ListenForCameras();

}  // namespace helper

#endif  // KELVA_UI_LINUX_KELVA_HELPER_ATTACH_LISTENER_H_
