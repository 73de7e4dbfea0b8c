#include "darwin/registry/CameraEntries.h"

#include <utility>

namespace darwin {
namespace {

constexpr unsigned kDisk = 0;
constexpr unsigned kCompactDisc = 5;
constexpr const char* kBadRevision = "Q42";
constexpr const char* kDriver = "com_kelva_Glimmer";
constexpr const char* kMassStorageDriver = "com_kelva_Glimmer_ms";

std::map<std::string, PropertyValue> InquiryProperties(const CameraDescription& camera) {
  return {{"Vendor Identification", camera.vendor},
          {"Product Identification", camera.product},
          {"Product Revision Level", camera.revision},
          {"Peripheral Device Type", std::uint64_t{camera.peripheralType}}};
}

EntryDescription Service(std::string className, std::map<std::string, PropertyValue> properties) {
  properties.emplace("IOClass", className);
  return {{std::move(className), "IOService", "IORegistryEntry"}, std::move(properties), {}};
}

void AddDriver(Registry& registry, EntryId nub, const CameraDescription& camera) {
  EntryDescription driver = Service(DriverClass(camera), InquiryProperties(camera));
  driver.openUserClient = camera.openUserClient;
  registry.RegisterService(registry.Add(nub, std::move(driver)));
}

void AddCompactDisc(Registry& registry, EntryId nub) {
  const EntryId driver = registry.Add(nub, Service("IOSCSIPeripheralDeviceType05", {}));
  registry.RegisterService(registry.Add(driver, Service("IOCompactDiscServices", {})));
}

}  // namespace

bool IsBadCamera(const CameraDescription& camera) {
  return camera.peripheralType == kCompactDisc && camera.revision == kBadRevision;
}

std::string DriverClass(const CameraDescription& camera) {
  return camera.peripheralType == kDisk ? kMassStorageDriver : kDriver;
}

EntryId AddCamera(Registry& registry, EntryId parent, const CameraDescription& camera) {
  EntryDescription device = Service("IOUSBHostDevice", {});
  if (!camera.serial.empty()) device.properties.emplace("USB Serial Number", camera.serial);
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
