#include "ErrorPolicy.h"

#include "Camera.h"

namespace kelva {

void ReportProtocolError(const std::string& message) {
  if (Camera::throwExceptions_) throw CameraError(message);
}

void ReportProtocolError() {
  if (Camera::throwExceptions_) throw CameraError();
}

}  // namespace kelva
