#include "vcam/usbip/WireFaults.h"

#include <algorithm>

namespace vcam::usbip {

void WireFaults::Arm(WireFault fault, std::uint64_t at) {
  const std::lock_guard lock(mutex_);
  armed_.push_back({fault, commands_ + at});
}

void WireFaults::Disarm() {
  const std::lock_guard lock(mutex_);
  armed_.clear();
}

WireFault WireFaults::Next() {
  const std::lock_guard lock(mutex_);
  const std::uint64_t command = ++commands_;
  const auto meant = std::find_if(armed_.begin(), armed_.end(), [&](const Armed& one) { return one.at == command; });
  return meant == armed_.end() ? WireFault::kNone : meant->fault;
}

std::uint64_t WireFaults::commands() const {
  const std::lock_guard lock(mutex_);
  return commands_;
}

}  // namespace vcam::usbip
