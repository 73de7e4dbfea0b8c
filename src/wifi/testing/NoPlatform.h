#ifndef KELVA_WIFI_TESTING_NO_PLATFORM_H_
#define KELVA_WIFI_TESTING_NO_PLATFORM_H_

#include <string>
#include <vector>

#include "Camera.h"

// The entry points that a platform supplies, for a test program without one: no camera, nothing to listen to.
// Included by exactly one source of the program.

std::vector<boost::shared_ptr<Camera>> Camera::EnumerateCameras(bool, std::string, bool, int) {
  return {};
}
void Camera::ListenForCameraAttach(void (*)(boost::shared_ptr<Camera>, void*), void*, bool) {}
void Camera::ListenForBadCameraAttach(void (*)(void*), void*) {}

#endif  // KELVA_WIFI_TESTING_NO_PLATFORM_H_
