// Finds one camera among those that the platform enumerates. A file of its own, so that a program with its own
// transport does not link a platform.

#include <utility>

#include "Camera.h"
#include "Checks.h"
#include "FatalAssertion.h"

boost::shared_ptr<Camera> Camera::GetCamera(const char* serialNumber, std::string text, bool first, bool second) {
  for (const boost::shared_ptr<Camera>& camera : EnumerateCameras(true, std::move(text), first, second)) {
    if (camera == nullptr) kelva::FailAssertion("camera != nullptr", __func__);
    if (camera->CompareSn(serialNumber)) return camera;
  }
  kelva::ReportProtocolError("Camera not found.");
  return {};
}
