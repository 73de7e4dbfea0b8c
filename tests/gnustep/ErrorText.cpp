#include "tests/gnustep/ErrorText.h"

#include "src/usb/osx/OsxCameraError.h"

std::string TextOfErrorFrom(const std::function<void()>& action) {
  try {
    action();
  } catch (const OsxCameraError& error) {
    return error.what();
  }
  return {};
}
