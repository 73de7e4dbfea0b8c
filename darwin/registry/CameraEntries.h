#ifndef KELVA_DARWIN_REGISTRY_CAMERA_ENTRIES_H_
#define KELVA_DARWIN_REGISTRY_CAMERA_ENTRIES_H_

#include <string>

#include "darwin/registry/Registry.h"

namespace darwin {

/// A camera as its inquiry data and its USB device describe it. Trailing blanks of the inquiry fields are cut already.
struct CameraDescription {
  std::string serial;  ///< empty: the device has none
  std::string vendor;
  std::string product;
  std::string revision;
  unsigned peripheralType = 0;  ///< SCSI: 0 disk, 5 CD-ROM
  UserClientFactory openUserClient;
};

/// True for a camera that the system takes for a compact disc: peripheral type 5 with revision "Q42".
bool IsBadCamera(const CameraDescription& camera);

/// The class of the driver that serves a camera: "com_kelva_Glimmer_ms" for peripheral type 0, which the kernel's disk
/// driver also claims, else "com_kelva_Glimmer".
std::string DriverClass(const CameraDescription& camera);

/// Adds a camera below `parent` as the registry shows one: the USB device with its serial number, the entry with the
/// inquiry data, and the driver's service; for a bad camera the compact-disc service, two levels below the inquiry
/// data. Returns the USB device's entry; terminating that entry ends them all.
EntryId AddCamera(Registry& registry, EntryId parent, const CameraDescription& camera);

/// As above, below a USB device that is there already. Returns the entry with the inquiry data.
EntryId AddCameraServices(Registry& registry, EntryId usbDevice, const CameraDescription& camera);

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_CAMERA_ENTRIES_H_
