#ifndef KELVA_WIFI_ERROR_POLICY_H_
#define KELVA_WIFI_ERROR_POLICY_H_

#include <string>

namespace kelva {

/// A command found a protocol error: throws CameraError with the message while `Camera::throwExceptions_` is true;
/// otherwise returns, and the command returns its neutral value.
void ReportProtocolError(const std::string& message);

/// As above, with the default message "Camera error.".
void ReportProtocolError();

}  // namespace kelva

#endif  // KELVA_WIFI_ERROR_POLICY_H_
