#include "Camera.h"

#include <utility>

#include "ErrorPolicy.h"
#include "FatalAssertion.h"

bool Camera::throwExceptions_ = true;

Camera::Camera(int chunkSize, int progressInterval)
    : hexDump_(false), chunkSize_(chunkSize), progressInterval_(progressInterval) {}

Camera::~Camera() = default;

bool Camera::operator==(const Camera&) const {
  return false;
}

boost::shared_ptr<Camera> Camera::GetCamera(const char* serialNumber, std::string text, bool first, bool second) {
  for (const boost::shared_ptr<Camera>& camera : EnumerateCameras(true, std::move(text), first, second)) {
    if (camera == nullptr) {
      vsc::FailAssertion("camera != nullptr", __func__);
    }
    if (camera->CompareSn(serialNumber)) {
      return camera;
    }
  }
  vsc::ReportProtocolError("Camera not found.");
  return {};
}

bool Camera::enableHexDump() {
  return setHexDump(true);
}

bool Camera::disableHexDump() {
  return setHexDump(false);
}

bool Camera::setHexDump(bool on) {
  return std::exchange(hexDump_, on);
}
