// Which SCSI devices are cameras, and which of them are bad ones.

#include "darwin/udev/ScsiUnit.h"

#include "wire/RegistryNames.h"

namespace darwin::udev {

bool ScsiUnit::IsBadCamera() const {
  return wire::IsBadCamera(peripheralType, revision);
}

bool IsMaker(const std::string& vendor) {
  return vendor == wire::kVendor;
}

}  // namespace darwin::udev
