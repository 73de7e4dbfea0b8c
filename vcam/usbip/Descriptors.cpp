// The camera's USB descriptors, byte by byte.
#include "vcam/usbip/Descriptors.h"

namespace vcam::usbip {
namespace {

enum StringIndex : std::uint8_t { kLanguages = 0, kVendorString = 1, kProductString = 2, kSerialString = 3 };

constexpr std::uint8_t kBulk = 2;
constexpr std::uint8_t kSelfPowered = 0xC0;

bool IsSuper(const UsbIdentity& identity) {
  return identity.speed == Speed::kSuper;
}

base::Bytes DeviceDescriptor(const UsbIdentity& identity) {
  base::Bytes bytes{18, kDeviceDescriptor};
  base::Append(bytes, IsSuper(identity) ? std::uint16_t{0x0320} : std::uint16_t{0x0200});
  // Class, subclass and protocol stand in the interface. The size of endpoint 0 is a power of two at SuperSpeed.
  bytes.insert(bytes.end(), {0, 0, 0, IsSuper(identity) ? std::uint8_t{9} : std::uint8_t{64}});
  base::Append(bytes, kVendorId, kProductId, kRelease);
  bytes.insert(bytes.end(), {kVendorString, kProductString, kSerialString, 1});
  return bytes;
}

void AppendEndpoint(base::Bytes& bytes, const UsbIdentity& identity, std::uint8_t address) {
  bytes.insert(bytes.end(), {7, kEndpointDescriptor, address, kBulk});
  base::Append(bytes, IsSuper(identity) ? std::uint16_t{1024} : std::uint16_t{512});
  bytes.push_back(0);
  if (IsSuper(identity)) bytes.insert(bytes.end(), {6, kCompanionDescriptor, 15, 0, 0, 0});
}

base::Bytes ConfigurationDescriptor(const UsbIdentity& identity) {
  // The total length is filled in below. One interface, configuration 1, no name, 2 mA or 8 mA from the bus.
  base::Bytes bytes{9, kConfigurationDescriptor, 0, 0, 1, 1,    0,    kSelfPowered, 1,
                    9, kInterfaceDescriptor,     0, 0, 2, 0x08, 0x06, 0x50,         0};
  AppendEndpoint(bytes, identity, 0x80 | kBulkIn);
  AppendEndpoint(bytes, identity, kBulkOut);
  base::Store(std::span<std::uint8_t>(bytes), 2, static_cast<std::uint16_t>(bytes.size()));
  return bytes;
}

// SuperSpeed devices must say here that they support link power management, and at which speeds they work.
base::Bytes ObjectStoreDescriptor() {
  return {5,  kObjectStoreDescriptor, 22, 0, 2,           //
          7,  kCapabilityDescriptor,  2,  0, 0,    0, 0,  //
          10, kCapabilityDescriptor,  3,  0, 0x0C, 0, 2, 0, 0, 0};
}

base::Bytes StringDescriptor(const std::string& text) {
  const std::string fitting = text.substr(0, kMaxStringLength);
  base::Bytes bytes{static_cast<std::uint8_t>(2 + 2 * fitting.size()), kStringDescriptor};
  for (const char character : fitting) bytes.insert(bytes.end(), {static_cast<std::uint8_t>(character), 0});
  return bytes;
}

std::optional<base::Bytes> String(const UsbIdentity& identity, std::uint8_t index) {
  switch (index) {
    case kLanguages:
      return base::Bytes{4, kStringDescriptor, 0x09, 0x04};  // English
    case kVendorString:
      return StringDescriptor(identity.vendor);
    case kProductString:
      return StringDescriptor(identity.product);
    case kSerialString:
      return StringDescriptor(identity.serial);
    default:
      return std::nullopt;
  }
}

}  // namespace

std::optional<base::Bytes> Describe(const UsbIdentity& identity, std::uint8_t type, std::uint8_t index) {
  if (type == kStringDescriptor) return String(identity, index);
  if (index != 0) return std::nullopt;
  switch (type) {
    case kDeviceDescriptor:
      return DeviceDescriptor(identity);
    case kConfigurationDescriptor:
      return ConfigurationDescriptor(identity);
    case kObjectStoreDescriptor:
      return IsSuper(identity) ? std::optional(ObjectStoreDescriptor()) : std::nullopt;
    default:
      return std::nullopt;
  }
}

}  // namespace vcam::usbip
