// The exception of the platform layer, with the call stack of the place that threw it.

#include "OsxCameraError.h"

#include <execinfo.h>

#include <cstdlib>
#include <memory>

namespace {

constexpr int kMostFrames = 9;

struct FreeArray {
  void operator()(char** lines) const { std::free(lines); }
};

/// A line feed and a text for each frame; empty when the system cannot name the frames.
std::string TraceText(void* const* frames, int count) {
  const std::unique_ptr<char*, FreeArray> lines(backtrace_symbols(frames, count));
  std::string text;
  for (int i = 0; lines != nullptr && i < count; ++i) {
    text += "\n";
    text += lines.get()[i];
  }
  return text;
}

}  // namespace

OsxCameraError::OsxCameraError(const std::string& msg) : message_("OsxCameraError: " + msg) {
  // Not in a helper: the first frame is left out, and it must be this constructor's.
  void* frames[kMostFrames];
  const int count = backtrace(frames, kMostFrames);
  if (count > 1) message_ += TraceText(frames + 1, count - 1);
  text_ = message_.c_str();
}

// A copied pointer would point into the other object's message.
OsxCameraError::OsxCameraError(const OsxCameraError& other)
    : CameraError(other), message_(other.message_), text_(message_.c_str()) {}

OsxCameraError& OsxCameraError::operator=(const OsxCameraError& other) {
  CameraError::operator=(other);
  message_ = other.message_;
  text_ = message_.c_str();
  return *this;
}

OsxCameraError::~OsxCameraError() = default;

const char* OsxCameraError::what() const noexcept {
  return text_;
}
