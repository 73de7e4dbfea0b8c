#ifndef KELVA_DARWIN_UDEV_SCSI_UNIT_H_
#define KELVA_DARWIN_UDEV_SCSI_UNIT_H_

#include <string>

#include "wire/RegistryNames.h"

namespace darwin::udev {

/// A SCSI unit of this maker as sysfs shows it: a camera, or a camera that serves as a compact disc.
struct ScsiUnit {
  /// The device path without "/sys": of the generic node's entry, or of the unit itself for a bad camera.
  std::string path;
  /// The node, such as "/dev/sg3"; empty for a bad camera, which no one opens.
  std::string node;
  std::string vendor;
  std::string product;
  std::string revision;
  int peripheralType = 0;
  /// The serial number of the USB device above the unit; empty without one.
  std::string serial;
  /// Bus and device number of that USB device. The kernel counts the device number up at every plug, which tells a
  /// camera from an earlier device at the same path.
  std::string usbAddress;

  /// True for a camera that the system has attached through its compact-disc services.
  bool IsBadCamera() const { return wire::IsBadCamera(peripheralType, revision); }
  bool operator==(const ScsiUnit&) const = default;
};

/// True for an inquiry vendor identification of this maker, trailing blanks cut.
inline bool IsMaker(const std::string& vendor) {
  return vendor == wire::kVendor;
}

}  // namespace darwin::udev

#endif  // KELVA_DARWIN_UDEV_SCSI_UNIT_H_
