#ifndef KELVA_WIFI_CHECKS_H_
#define KELVA_WIFI_CHECKS_H_

#include <cstdint>
#include <string>

namespace kelva {

/// Reports a protocol error: throws CameraError with the message while `Camera::throwExceptions_` is true. Otherwise
/// returns, and the command returns its neutral value.
void ReportProtocolError(const std::string& message);

/// The same with the default message "Camera error.".
void ReportProtocolError();

/// Compares the size that arrived with the size that the camera announced. True when everything arrived; the camera may
/// deliver one surplus byte, which the caller cuts off. Fewer bytes: throws CameraError "ReadFile() truncated.", or
/// returns false. More than one surplus byte is the fatal assertion "data.size() - 1 == fileSize" in `function`.
bool ReconcileSize(std::uint64_t received, std::uint32_t announced, const char* function);

}  // namespace kelva

#endif  // KELVA_WIFI_CHECKS_H_
