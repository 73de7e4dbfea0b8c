// Collects what udev, sysfs and /proc show of every camera on this machine.

#include "apps/doctor/linux/Survey.h"

#include <grp.h>
#include <pwd.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>

#include "apps/doctor/linux/Holders.h"
#include "apps/doctor/linux/Rules.h"
#include "darwin/udev/UdevHandles.h"
#include "wire/RegistryNames.h"

namespace apps::doctor {
namespace {

using darwin::udev::UdevContext;
using darwin::udev::UdevDevice;
using darwin::udev::UdevEnumerate;

constexpr const char* kMassStorage = "08";  // the USB interface class

std::string Text(const char* text) {
  return text ? text : "";
}

std::string Attribute(udev_device* device, const char* name) {
  std::string text = Text(udev_device_get_sysattr_value(device, name));
  text.erase(text.find_last_not_of(" \t\n") + 1);
  return text;
}

std::optional<int> Number(const std::string& text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

// Calls `visit` with each device of a subsystem; with a parent, only with those below it.
void ForEach(::udev* context, const char* subsystem, udev_device* parent,
             const std::function<void(udev_device*)>& visit) {
  const UdevEnumerate enumerate(udev_enumerate_new(context));
  if (!enumerate) return;
  udev_enumerate_add_match_subsystem(enumerate.get(), subsystem);
  if (parent) udev_enumerate_add_match_parent(enumerate.get(), parent);
  udev_enumerate_scan_devices(enumerate.get());
  udev_list_entry* entry = nullptr;
  udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(enumerate.get())) {
    const UdevDevice device(udev_device_new_from_syspath(context, udev_list_entry_get_name(entry)));
    if (device) visit(device.get());
  }
}

bool HasType(udev_device* device, const char* type) {
  return Text(udev_device_get_devtype(device)) == type;
}

void ReadNode(udev_device* generic, CameraFacts& camera) {
  camera.node = Text(udev_device_get_devnode(generic));
  const dev_t numbers = udev_device_get_devnum(generic);
  camera.major = static_cast<int>(major(numbers));
  camera.minor = static_cast<int>(minor(numbers));
  camera.nodeError = ::access(camera.node.c_str(), R_OK | W_OK) == 0 ? 0 : errno;
}

CameraFacts ReadUnit(::udev* context, udev_device* unit) {
  CameraFacts camera;
  camera.driverBound = true;
  camera.unitPath = Text(udev_device_get_syspath(unit));
  camera.peripheralType = Number(Attribute(unit, "type")).value_or(-1);
  camera.revision = Attribute(unit, "rev");
  camera.maxSectors = Number(Attribute(unit, "max_sectors"));
  if (udev_device* usb = udev_device_get_parent_with_subsystem_devtype(unit, "usb", "usb_device")) {
    camera.usbPath = Text(udev_device_get_syspath(usb));
    camera.serial = Attribute(usb, "serial");
  }
  ForEach(context, "block", unit, [&](udev_device* block) {
    if (camera.peripheralType == wire::kCompactDiscType) camera.disc = Text(udev_device_get_devnode(block));
  });
  ForEach(context, "scsi_generic", unit, [&](udev_device* generic) { ReadNode(generic, camera); });
  return camera;
}

// A camera on the USB bus that the kernel shows no SCSI unit for, because no driver has set it up yet.
CameraFacts ReadBareDevice(::udev* context, udev_device* usb) {
  CameraFacts camera;
  camera.usbPath = Text(udev_device_get_syspath(usb));
  camera.serial = Attribute(usb, "serial");
  ForEach(context, "usb", usb, [&](udev_device* interface) {
    if (!HasType(interface, "usb_interface") || Attribute(interface, "bInterfaceClass") != kMassStorage) return;
    camera.driverBound = udev_device_get_driver(interface) != nullptr;
  });
  return camera;
}

std::vector<CameraFacts> ReadCameras(::udev* context) {
  std::vector<CameraFacts> cameras;
  ForEach(context, "scsi", nullptr, [&](udev_device* unit) {
    if (!HasType(unit, "scsi_device") || Attribute(unit, "vendor") != wire::kVendor) return;
    cameras.push_back(ReadUnit(context, unit));
  });
  // A camera without a driver has no SCSI unit; its USB device is then all there is to see.
  std::set<std::string> seen;
  for (const CameraFacts& camera : cameras) seen.insert(camera.usbPath);
  ForEach(context, "usb", nullptr, [&](udev_device* usb) {
    if (!HasType(usb, "usb_device") || Attribute(usb, "manufacturer") != wire::kVendor) return;
    if (!seen.contains(Text(udev_device_get_syspath(usb)))) cameras.push_back(ReadBareDevice(context, usb));
  });
  return cameras;
}

std::string UserName() {
  const passwd* entry = ::getpwuid(::getuid());
  return entry ? entry->pw_name : std::to_string(::getuid());
}

bool InGroup(const char* name) {
  const group* wanted = ::getgrnam(name);
  if (!wanted) return false;
  std::vector<gid_t> groups(static_cast<std::size_t>(std::max(::getgroups(0, nullptr), 0)));
  const int count = ::getgroups(static_cast<int>(groups.size()), groups.data());
  groups.resize(static_cast<std::size_t>(std::max(count, 0)));
  return ::getgid() == wanted->gr_gid || std::find(groups.begin(), groups.end(), wanted->gr_gid) != groups.end();
}

// The serial number of the USB device above a device in sysfs.
std::string SerialAbove(std::filesystem::path device) {
  for (; device.has_relative_path(); device = device.parent_path()) {
    std::ifstream file(device / "serial");
    std::string serial;
    if (std::getline(file, serial)) return serial.erase(serial.find_last_not_of(" \t") + 1);
  }
  return {};
}

}  // namespace

MachineFacts SurveyMachine(const Probe& probe) {
  MachineFacts facts;
  facts.udevRuns = ::access("/run/udev/control", F_OK) == 0;
  facts.rulesFile = InstalledRules();
  facts.user = UserName();
  facts.userInPlugdev = InGroup("plugdev");
  if (const UdevContext context{udev_new()}) facts.cameras = ReadCameras(context.get());
  for (CameraFacts& camera : facts.cameras) {
    if (!probe || camera.node.empty() || camera.nodeError != 0) continue;
    camera.holders = HoldersOf(camera.node);
    // A camera carries one command at a time: a question would disturb the program that holds it.
    if (camera.holders.empty()) camera.answer = probe(camera.node);
  }
  return facts;
}

// Without udev, whose whole enumeration takes longer than some commands do.
std::string NodeOfCamera(const std::string& serial) {
  if (serial.empty()) return {};
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/sys/class/scsi_generic", error)) {
    const std::filesystem::path device = std::filesystem::canonical(entry.path(), error);
    if (!error && SerialAbove(device) == serial) return "/dev/" + entry.path().filename().string();
  }
  return {};
}

}  // namespace apps::doctor
