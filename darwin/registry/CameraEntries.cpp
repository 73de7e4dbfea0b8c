// The chain of entries that every back end publishes for a camera.

#include "darwin/registry/CameraEntries.h"

#include <utility>

#include "wire/RegistryNames.h"

namespace darwin {
namespace {

std::map<std::string, PropertyValue> InquiryProperties(const CameraDescription& camera) {
  return {{wire::kVendorName, camera.vendor},
          {wire::kProductName, camera.product},
          {wire::kRevisionName, camera.revision},
          {"Peripheral Device Type", std::uint64_t{camera.peripheralType}}};
}

EntryDescription Service(std::string className, std::map<std::string, PropertyValue> properties) {
  properties.emplace(wire::kClassName, className);
  return {{std::move(className), "IOService", "IORegistryEntry"}, std::move(properties), {}};
}

void AddDriver(Registry& registry, EntryId nub, const CameraDescription& camera) {
  EntryDescription driver = Service(DriverClass(camera), InquiryProperties(camera));
  driver.openUserClient = camera.openUserClient;
  registry.RegisterService(registry.Add(nub, std::move(driver)));
}

void AddCompactDisc(Registry& registry, EntryId nub) {
  const EntryId driver = registry.Add(nub, Service("IOSCSIPeripheralDeviceType05", {}));
  registry.RegisterService(registry.Add(driver, Service(wire::kCompactDiscClass, {})));
}

}  // namespace

bool IsBadCamera(const CameraDescription& camera) {
  return wire::IsBadCamera(static_cast<int>(camera.peripheralType), camera.revision);
}

std::string DriverClass(const CameraDescription& camera) {
  return camera.peripheralType == wire::kDiskType ? wire::kMassStorageDriverClass : wire::kDriverClass;
}

EntryId AddCamera(Registry& registry, EntryId parent, const CameraDescription& camera) {
  EntryDescription device = Service("IOUSBHostDevice", {});
  if (!camera.serial.empty()) device.properties.emplace(wire::kSerialName, camera.serial);
  const EntryId usbDevice = registry.Add(parent, std::move(device));
  AddCameraServices(registry, usbDevice, camera);
  return usbDevice;
}

EntryId AddCameraServices(Registry& registry, EntryId usbDevice, const CameraDescription& camera) {
  const EntryId nub = registry.Add(usbDevice, Service("IOSCSIPeripheralDeviceNub", InquiryProperties(camera)));
  if (IsBadCamera(camera)) {
    AddCompactDisc(registry, nub);
  } else {
    AddDriver(registry, nub, camera);
  }
  return nub;
}

}  // namespace darwin
