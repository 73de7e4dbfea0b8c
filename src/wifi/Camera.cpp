// What belongs to no command: construction, the hex-dump switch, comparison.

#include "Camera.h"

#include <utility>

bool Camera::throwExceptions_ = true;

Camera::Camera(int chunkSize, int progressInterval)
    : hexDump_(false), chunkSize_(chunkSize), progressInterval_(progressInterval) {}

Camera::~Camera() = default;

bool Camera::operator==(const Camera&) const {
  return false;
}

bool Camera::enableHexDump() {
  return setHexDump(true);
}

bool Camera::disableHexDump() {
  return setHexDump(false);
}

bool Camera::setHexDump(bool on) {
  return std::exchange(hexDump_, on);
}
