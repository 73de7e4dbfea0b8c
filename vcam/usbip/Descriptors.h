#ifndef KELVA_VCAM_USBIP_DESCRIPTORS_H_
#define KELVA_VCAM_USBIP_DESCRIPTORS_H_

#include <cstdint>
#include <optional>
#include <string>

#include "base/Bytes.h"
#include "vcam/usbip/Handshake.h"

// What the camera tells about itself as a USB device: one configuration with one mass-storage interface.

namespace vcam::usbip {

/// From the range that is set aside for private tests: no product has these numbers.
inline constexpr std::uint16_t kVendorId = 0x1209;
inline constexpr std::uint16_t kProductId = 0x0001;
inline constexpr std::uint16_t kRelease = 0x0100;

inline constexpr std::uint8_t kBulkIn = 1;
inline constexpr std::uint8_t kBulkOut = 2;

enum DescriptorType : std::uint8_t {
  kDeviceDescriptor = 1,
  kConfigurationDescriptor = 2,
  kStringDescriptor = 3,
  kInterfaceDescriptor = 4,
  kEndpointDescriptor = 5,
  kObjectStoreDescriptor = 15,
  kCapabilityDescriptor = 16,
  kCompanionDescriptor = 48,
};

/// The longest text that fits a string descriptor, in characters.
inline constexpr std::size_t kMaxStringLength = 126;

struct UsbIdentity {
  std::string vendor;
  std::string product;
  std::string serial;
  Speed speed = Speed::kHigh;
};

/// The bytes of a descriptor; nothing when the device has no such descriptor, and the request is stalled.
std::optional<base::Bytes> Describe(const UsbIdentity& identity, std::uint8_t type, std::uint8_t index);

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_DESCRIPTORS_H_
