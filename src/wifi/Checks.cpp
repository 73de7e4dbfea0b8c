// What every command does when an answer is wrong.

#include "Checks.h"

#include "Camera.h"
#include "FatalAssertion.h"

namespace kelva {

void ReportProtocolError(const std::string& message) {
  if (Camera::throwExceptions_) throw CameraError(message);
}

void ReportProtocolError() {
  if (Camera::throwExceptions_) throw CameraError();
}

bool ReconcileSize(std::uint64_t received, std::uint32_t announced, const char* function) {
  if (received > announced && received - 1 != announced) FailAssertion("data.size() - 1 == fileSize", function);
  if (received < announced) {
    ReportProtocolError("ReadFile() truncated.");
    return false;
  }
  return true;
}

}  // namespace kelva
