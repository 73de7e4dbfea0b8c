#ifndef KELVA_USB_OSX_OSX_CAMERA_ERROR_H_
#define KELVA_USB_OSX_OSX_CAMERA_ERROR_H_

#include <string>

#include "CameraError.h"

/// A failure of the platform layer, with the place where it happened. Always thrown, whatever
/// `Camera::throwExceptions_` says. The base part keeps the default text "Camera error.".
class OsxCameraError : public CameraError {
 public:
  /// what() is "OsxCameraError: ", msg, and up to 8 lines of the call stack, innermost first, each after a line feed.
  explicit OsxCameraError(const std::string& msg);

  OsxCameraError(const OsxCameraError& other);
  OsxCameraError& operator=(const OsxCameraError& other);
  ~OsxCameraError() override;

  /// This class's own message, owned by this object. Allocates nothing and cannot fail.
  const char* what() const noexcept override;

 private:
  std::string message_;
  const char* text_;  // message_'s characters, taken once at the end of construction
};

#endif  // KELVA_USB_OSX_OSX_CAMERA_ERROR_H_
