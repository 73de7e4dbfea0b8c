// The entry points of Camera on this platform. Arguments that have no meaning here are ignored.

#include "Camera.h"
#include "OsxCamera.h"

std::vector<boost::shared_ptr<Camera>> Camera::EnumerateCameras(bool allVendors, std::string, bool, int) {
  return OsxCamera::EnumerateOsxCameras(allVendors);
}

void Camera::ListenForCameraAttach(void (*callback)(boost::shared_ptr<Camera>, void*), void* context, bool) {
  OsxCamera::ListenForOsxCameraAttach(callback, context);
}

void Camera::ListenForBadCameraAttach(void (*callback)(void*), void* context) {
  OsxCamera::ListenForOsxBadCameraAttach(callback, context);
}
