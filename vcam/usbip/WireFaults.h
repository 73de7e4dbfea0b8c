#ifndef KELVA_VCAM_USBIP_WIRE_FAULTS_H_
#define KELVA_VCAM_USBIP_WIRE_FAULTS_H_

#include <cstdint>
#include <mutex>
#include <vector>

#include "vcam/usbip/WireFault.h"

namespace vcam::usbip {

/// Which commands of the camera the cable spoils, and how. May be armed from any thread while the cable is served.
class WireFaults {
 public:
  /// Spoils the `at`-th command of the camera from now, counted from 1, besides what is armed already. Of two faults for
  /// one command the first that was armed comes.
  void Arm(WireFault fault, std::uint64_t at = 1);
  /// Forgets every fault that has not come yet.
  void Disarm();
  /// Counts one command; what is to happen to it.
  WireFault Next();
  /// Commands of the camera so far.
  std::uint64_t commands() const;

 private:
  struct Armed {
    WireFault fault;
    std::uint64_t at;
  };

  mutable std::mutex mutex_;
  std::vector<Armed> armed_;
  std::uint64_t commands_ = 0;
};

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_WIRE_FAULTS_H_
