// The two exception classes of the command set.

#include "CameraError.h"

CameraError::CameraError() : message_("Camera error."), text_(message_.c_str()) {}

CameraError::CameraError(const std::string& msg) : message_("Camera error: " + msg), text_(message_.c_str()) {}

// A copied pointer would point into the other object's message.
CameraError::CameraError(const CameraError& other)
    : std::exception(other), message_(other.message_), text_(message_.c_str()) {}

CameraError& CameraError::operator=(const CameraError& other) {
  std::exception::operator=(other);
  message_ = other.message_;
  text_ = message_.c_str();
  return *this;
}

CameraError::~CameraError() = default;

const char* CameraError::what() const noexcept {
  return text_;
}

CameraTransferError::CameraTransferError() = default;

CameraTransferError::CameraTransferError(const std::string& msg) : CameraError(msg) {}

CameraTransferError::~CameraTransferError() = default;
