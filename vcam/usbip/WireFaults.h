#ifndef KELVA_VCAM_USBIP_WIRE_FAULTS_H_
#define KELVA_VCAM_USBIP_WIRE_FAULTS_H_

#include <cstdint>
#include <mutex>

#include "vcam/usbip/WireFault.h"

namespace vcam::usbip {

/// Which command of the camera the cable spoils, and how. May be armed from any thread while the cable is served.
class WireFaults {
 public:
  /// Spoils the `at`-th command of the camera from now, counted from 1.
  void Arm(WireFault fault, std::uint64_t at = 1);
  void Disarm() { Arm(WireFault::kNone); }
  /// Counts one command; what is to happen to it.
  WireFault Next();
  /// Commands of the camera so far.
  std::uint64_t commands() const;

 private:
  mutable std::mutex mutex_;
  WireFault fault_ = WireFault::kNone;
  std::uint64_t at_ = 0;
  std::uint64_t commands_ = 0;
};

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_WIRE_FAULTS_H_
