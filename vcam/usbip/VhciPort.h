#ifndef KELVA_VCAM_USBIP_VHCI_PORT_H_
#define KELVA_VCAM_USBIP_VHCI_PORT_H_

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/FileDescriptor.h"
#include "vcam/usbip/Handshake.h"

// The near end of this machine's own virtual USB host controller (module vhci_hcd).

namespace vcam::usbip {

/// The first free port for a device of that speed in the controller's status table; nothing when all are taken or the
/// table cannot be read.
std::optional<unsigned> FreePort(std::string_view table, Speed speed);

/// Plugs a device into this machine: gives one end of a socket pair to the controller below `controller` (normally
/// DefaultController()) and returns the other end, for a Session. Closing that end unplugs the device. Needs root. Throws
/// std::runtime_error with one sentence that says what is missing.
base::FileDescriptor PlugIntoController(const std::filesystem::path& controller, std::uint32_t device, Speed speed);

/// The directory of the kernel's first virtual controller.
std::filesystem::path DefaultController();

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_VHCI_PORT_H_
