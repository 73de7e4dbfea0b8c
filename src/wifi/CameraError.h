#ifndef KELVA_WIFI_CAMERA_ERROR_H_
#define KELVA_WIFI_CAMERA_ERROR_H_

#include <exception>
#include <string>

/// A protocol error found by the command set: an answer of the wrong size, a bad header, a camera that is not there.
///
/// Thrown by value and caught by reference. Commands throw it only while `Camera::throwExceptions_` is true; otherwise
/// they return their neutral value. Base of every exception of the library.
class CameraError : public std::exception {
 public:
  /// what() is "Camera error.".
  CameraError();

  /// what() is "Camera error: " followed by msg.
  explicit CameraError(const std::string& msg);

  CameraError(const CameraError& other);
  CameraError& operator=(const CameraError& other);
  ~CameraError() override;

  /// The message, owned by this object. Allocates nothing and cannot fail.
  const char* what() const noexcept override;

 private:
  std::string message_;
  const char* text_;  // message_'s characters, taken once at the end of construction
};

/// A transfer that failed: the pass-through call or the device's status was bad. Always thrown, whatever
/// `Camera::throwExceptions_` says. The message lists the command block and both codes.
class CameraTransferError : public CameraError {
 public:
  /// what() is "Camera error.".
  CameraTransferError();

  /// what() is "Camera error: " followed by msg.
  explicit CameraTransferError(const std::string& msg);

  // Out of line, so that one shared library holds the type's identity and every program that uses it can catch it.
  ~CameraTransferError() override;
};

#endif  // KELVA_WIFI_CAMERA_ERROR_H_
