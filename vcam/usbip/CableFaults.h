#ifndef KELVA_VCAM_USBIP_CABLE_FAULTS_H_
#define KELVA_VCAM_USBIP_CABLE_FAULTS_H_

#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vcam/camera/VirtualCamera.h"

// Faults that only a USB cable can have. Those of the camera are in vcam/faults and work through every door.

namespace vcam::usbip {

enum class CableFault : std::uint8_t {
  kNone,
  kHalfResidue,  ///< all the data, and a residue that denies half of it
  kHugeResidue,  ///< all the data, and a residue larger than any transfer
  kZeroResidue,  ///< half of the data, and a residue that claims all of it
  kSkipData,     ///< the status comes in place of the data
  kFailNoSense,  ///< the command fails, and REQUEST SENSE gives no reason
  kWrongTag,     ///< the status answers another command
  kPhaseError,   ///< the status says that host and device disagree
  kShortStatus,  ///< the status lacks its last byte
  kBabble,       ///< more data than was asked for
  kPull,         ///< the cable is pulled, half-way through the data
};

/// The fault's name as `kelva-vcam usbip --fault` takes it.
std::string_view NameOf(CableFault fault);
std::optional<CableFault> CableFaultByName(std::string_view name);
/// All faults but kNone.
std::span<const CableFault> AllCableFaults();

/// Which commands of the camera the cable spoils, and how. May be armed from any thread while the cable is served.
class CableFaults {
 public:
  /// Spoils the `at`-th camera command from now, counted from 1. If two faults name the same command, the one armed first
  /// happens.
  void Arm(CableFault fault, std::uint64_t at = 1);
  /// Forgets every fault that has not happened yet.
  void Disarm();
  /// Counts one command and says what happens to it.
  CableFault Next();
  /// Commands of the camera so far.
  std::uint64_t Commands() const;

 private:
  struct Armed {
    CableFault fault;
    std::uint64_t at;
  };

  mutable std::mutex mutex_;
  std::vector<Armed> armed_;
  std::uint64_t commands_ = 0;
};

/// Arms the fault that `text` names, NAME or NAME@N, on the camera or on its cable, whichever has a fault of that name.
/// Without @N it comes at the next command. Throws std::runtime_error with one sentence when there is no such fault or N is
/// not a positive number.
void ArmByText(std::string_view text, VirtualCamera& camera, CableFaults& cable);

/// The names of all faults, of the camera and of the cable, with commas between them.
std::string AllFaultNames();

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_CABLE_FAULTS_H_
