#include "ErrorText.h"

#include "OsxCameraError.h"

std::string TextOfErrorFrom(const std::function<void()>& action) {
  try {
    action();
  } catch (const OsxCameraError& error) {
    return error.what();
  }
  return {};
}
