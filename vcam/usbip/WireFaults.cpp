#include "vcam/usbip/WireFaults.h"

namespace vcam::usbip {

void WireFaults::Arm(WireFault fault, std::uint64_t at) {
  const std::lock_guard lock(mutex_);
  fault_ = fault;
  at_ = commands_ + at;
}

WireFault WireFaults::Next() {
  const std::lock_guard lock(mutex_);
  return ++commands_ == at_ ? fault_ : WireFault::kNone;
}

std::uint64_t WireFaults::commands() const {
  const std::lock_guard lock(mutex_);
  return commands_;
}

}  // namespace vcam::usbip
