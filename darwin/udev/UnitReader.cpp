// Reads one SCSI device and its USB parent from sysfs.

#include "darwin/udev/UnitReader.h"

#include <charconv>
#include <string_view>

namespace darwin::udev {
namespace {

std::string Text(const char* text) {
  return text ? text : "";
}

// An attribute as text; inquiry fields are padded with blanks.
std::string Attribute(udev_device* device, const char* name) {
  std::string text = Text(udev_device_get_sysattr_value(device, name));
  text.erase(text.find_last_not_of(" \t\n") + 1);
  return text;
}

int PeripheralType(udev_device* device) {
  const std::string text = Attribute(device, "type");
  int type = -1;
  std::from_chars(text.data(), text.data() + text.size(), type);
  return type;
}

bool IsGenericNode(udev_device* device) {
  return Text(udev_device_get_subsystem(device)) == "scsi_generic";
}

void ReadUsbDevice(udev_device* unit, ScsiUnit& result) {
  udev_device* usb = udev_device_get_parent_with_subsystem_devtype(unit, "usb", "usb_device");
  if (!usb) return;
  result.serial = Text(udev_device_get_sysattr_value(usb, "serial"));
  result.usbAddress = Attribute(usb, "busnum") + ":" + Attribute(usb, "devnum");
}

}  // namespace

std::optional<ScsiUnit> ReadUnit(udev_device* device) {
  const bool generic = IsGenericNode(device);
  udev_device* unit = generic ? udev_device_get_parent(device) : device;
  if (!unit) return std::nullopt;
  ScsiUnit result;
  result.vendor = Attribute(unit, "vendor");
  if (!IsMaker(result.vendor)) return std::nullopt;
  result.product = Attribute(unit, "model");
  result.revision = Attribute(unit, "rev");
  result.peripheralType = PeripheralType(unit);
  if (result.IsBadCamera() == generic) {
    return std::nullopt;  // read at its other entry
  }
  result.path = Text(udev_device_get_devpath(device));
  if (generic) result.node = Text(udev_device_get_devnode(device));
  ReadUsbDevice(unit, result);
  return result;
}

}  // namespace darwin::udev
