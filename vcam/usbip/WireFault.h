#ifndef KELVA_VCAM_USBIP_WIRE_FAULT_H_
#define KELVA_VCAM_USBIP_WIRE_FAULT_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

// Faults that exist on a USB cable only; those of the camera itself are armed on the camera.

namespace vcam::usbip {

enum class WireFault : std::uint8_t {
  kNone,
  kHalfResidue,  ///< all the data, and a residue that denies half of it
  kHugeResidue,  ///< all the data, and a residue beyond all bounds
  kZeroResidue,  ///< half of the data, and a residue that claims all of it
  kSkipData,     ///< the status comes in place of the data
  kFailNoSense,  ///< the command fails and there is no reason to be asked for
  kWrongTag,     ///< the status answers another command
  kPhaseError,   ///< the status says that host and device disagree
  kShortStatus,  ///< the status lacks its last byte
  kBabble,       ///< more data than was asked for
  kPull,         ///< the cable is pulled, half-way through the data
};

std::string_view NameOf(WireFault fault);
/// The fault that `kelva-vcam usbip --fault` calls by this name.
std::optional<WireFault> WireFaultByName(std::string_view name);
/// All faults but kNone.
std::span<const WireFault> AllWireFaults();

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_WIRE_FAULT_H_
