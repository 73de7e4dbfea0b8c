#include "ErrorPolicy.h"

#include <cstdio>
#include <cstdlib>

#include "Camera.h"

namespace vsc {

void ReportProtocolError(const std::string& message) {
  if (Camera::throwExceptions_) {
    throw CameraError(message);
  }
}

void ReportProtocolError() {
  if (Camera::throwExceptions_) {
    throw CameraError();
  }
}

void FailAssertion(const char* expression, const char* function) {
  std::fprintf(stderr, "Assertion failed: (%s), function %s.\n", expression, function);
  std::abort();
}

}  // namespace vsc
