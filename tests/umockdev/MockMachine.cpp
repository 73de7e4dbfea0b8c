#include "tests/umockdev/MockMachine.h"

#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace mock {
namespace {

constexpr mode_t kUsable = 0600;

std::string Padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

std::string Number(int number) {
  return std::to_string(number);
}

std::string UnitText(const Unit& unit) {
  return "E: SUBSYSTEM=scsi\nE: DEVTYPE=scsi_device\nA: vendor=" + Padded(unit.vendor, 8) +
         "\\n\nA: model=" + Padded(unit.product, 16) + "\\n\nA: rev=" + Padded(unit.revision, 4) +
         "\\n\nA: type=" + Number(unit.peripheralType) + "\\n\nA: max_sectors=240\\n\n";
}

std::string NodeText(const Unit& unit) {
  const std::string number = Number(unit.port);
  return "N: sg" + number + "=00\nE: SUBSYSTEM=scsi_generic\nE: DEVNAME=/dev/sg" + number +
         "\nE: MAJOR=21\nE: MINOR=" + number + "\n";
}

}  // namespace

MockMachine::MockMachine() : testbed_(umockdev_testbed_new()) {
  Add("P: /devices/pci0000:00/0000:00:14.0/usb1\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\nA: serial=0000:00:14.0\\n\n"
      "A: busnum=1\\n\nA: devnum=1\\n\nA: manufacturer=Linux xhci-hcd\\n\n\n");
}

MockMachine::~MockMachine() {
  for (const auto& [port, door] : doors_) umockdev_testbed_detach_ioctl(testbed_, NodeOf(port).c_str(), nullptr);
  g_object_unref(testbed_);
}

void MockMachine::Add(const std::string& description) {
  GError* error = nullptr;
  umockdev_testbed_add_from_string(testbed_, description.c_str(), &error);
  if (!error) return;
  const std::string message = error->message;
  g_error_free(error);
  throw std::runtime_error("The testbed refused a device: " + message);
}

std::string MockMachine::Describe(const Unit& unit, Plugged& plugged) {
  std::string path = "/devices/pci0000:00/0000:00:14.0/usb1";
  std::string text;
  const auto device = [&](const std::string& step, const std::string& rest) {
    path += "/" + step;
    plugged.paths.push_back(path);
    text += "P: " + path + "\n" + rest + "\n";
  };
  const std::string name = DescribeUsb(unit, device);
  const std::string driver = unit.upTo == Stage::kUsb ? "" : "E: DRIVER=usb-storage\nL: driver=../usb-storage\n";
  device(name + ":1.0", "E: SUBSYSTEM=usb\nE: DEVTYPE=usb_interface\n" + driver + "A: bInterfaceClass=08\\n\n");
  if (unit.upTo >= Stage::kUnit) {
    const std::string target = "target" + Number(unit.port) + ":0:0/" + Number(unit.port) + ":0:0:0";
    device("host" + Number(unit.port) + "/" + target, UnitText(unit));
  }
  if (unit.disc) text += DescribeDisc(unit, path, plugged);
  if (unit.upTo >= Stage::kNode) device("scsi_generic/sg" + Number(unit.port), NodeText(unit));
  return text;
}

// The block device that the kernel's disc driver makes of a unit of that type, beside the generic one.
std::string MockMachine::DescribeDisc(const Unit& unit, const std::string& unitPath, Plugged& plugged) {
  const std::string name = "sr" + Number(unit.port);
  plugged.paths.push_back(unitPath + "/block/" + name);
  return "P: " + plugged.paths.back() + "\nN: " + name + "=00\nE: SUBSYSTEM=block\nE: DEVTYPE=disk\nE: DEVNAME=/dev/" +
         name + "\nE: MAJOR=11\nE: MINOR=" + Number(unit.port) + "\n\n";
}

// The hubs and the device; returns the device's name.
std::string MockMachine::DescribeUsb(const Unit& unit, const AddDevice& device) {
  std::string name = "1";
  for (int hub = 0; hub <= unit.hubs; ++hub) {
    name += (hub == 0 ? "-" : ".") + Number(unit.port + 1);
    const bool last = hub == unit.hubs;
    device(name, "E: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\nA: busnum=1\\n\nA: devnum=" + Number(++deviceNumber_) +
                     "\\n\nA: serial=" + (last ? unit.serial : "HUB" + Number(hub)) +
                     "\\n\nA: manufacturer=" + (last ? unit.vendor : "Hubmaker") + "\\n\n");
  }
  return name;
}

void MockMachine::Plug(const Unit& unit) {
  Plugged& plugged = plugged_[unit.port];
  plugged.unit = unit;
  Add(Describe(unit, plugged));
}

void MockMachine::Unplug(int port) {
  auto node = plugged_.extract(port);
  if (node.empty()) return;
  if (doors_.contains(port)) umockdev_testbed_detach_ioctl(testbed_, NodeOf(port).c_str(), nullptr);
  doors_.erase(port);
  Withdraw(node.mapped());
}

void MockMachine::Vanish(int port) {
  Withdraw(plugged_.at(port));
}

void MockMachine::Withdraw(Plugged& plugged) {
  for (auto path = plugged.paths.rbegin(); path != plugged.paths.rend(); ++path) {
    const std::string sysPath = "/sys" + *path;
    umockdev_testbed_uevent(testbed_, sysPath.c_str(), "remove");
    umockdev_testbed_remove_device(testbed_, sysPath.c_str());
  }
  plugged.paths.clear();
}

void MockMachine::Change(int port) {
  umockdev_testbed_uevent(testbed_, ("/sys" + PathOf(port)).c_str(), "change");
}

void MockMachine::SetUsable(int port, bool usable) {
  if (::chmod(NodeOf(port).c_str(), usable ? kUsable : 0) != 0) throw std::runtime_error("chmod of a node failed");
}

void MockMachine::Attach(int port, std::shared_ptr<SgDoor> door) {
  GError* error = nullptr;
  if (!umockdev_testbed_attach_ioctl(testbed_, NodeOf(port).c_str(), door->Handler(), &error)) {
    throw std::runtime_error("The testbed refused the node's commands.");
  }
  doors_[port] = std::move(door);
}

std::string MockMachine::NodeOf(int port) {
  return "/dev/sg" + Number(port);
}

std::string MockMachine::PathOf(int port) const {
  return plugged_.at(port).paths.back();
}

std::vector<std::string> MockMachine::Serials() const {
  std::vector<std::string> serials;
  for (const auto& [port, plugged] : plugged_) serials.push_back(plugged.unit.serial);
  std::sort(serials.begin(), serials.end());
  return serials;
}

void GiveUpFileOverride() {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3]{};
  if (::syscall(SYS_capget, &header, data) != 0) throw std::runtime_error("capget failed");
  constexpr unsigned kOverrides = 1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH;
  data[0].effective &= ~kOverrides;
  data[0].permitted &= ~kOverrides;
  if (::syscall(SYS_capset, &header, data) != 0) throw std::runtime_error("capset failed");
}

}  // namespace mock
