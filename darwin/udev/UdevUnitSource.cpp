// Messages of the udev monitor and the devices in sysfs, through libudev.

#include "darwin/udev/UdevUnitSource.h"

#include <linux/netlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>

#include "darwin/udev/UnitReader.h"

namespace darwin::udev {
namespace {

constexpr const char* kGeneric = "scsi_generic";
constexpr const char* kScsi = "scsi";
constexpr const char* kUnit = "scsi_device";

std::string SysPath(const std::string& path) {
  return "/sys" + path;
}

bool IsUnitOrNode(udev_device* device) {
  const char* type = udev_device_get_devtype(device);
  const char* subsystem = udev_device_get_subsystem(device);
  return (subsystem && std::string(subsystem) == kGeneric) || (type && std::string(type) == kUnit);
}

// libudev returns an unbound monitor, without an error, where udevd does not run.
bool ListensToNobody(int descriptor) {
  sockaddr_nl address{};
  socklen_t size = sizeof address;
  return ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
         address.nl_family == AF_NETLINK && address.nl_groups == 0;
}

}  // namespace

UdevUnitSource::UdevUnitSource() : context_(udev_new()) {
  if (context_) StartMonitor();
}

void UdevUnitSource::StartMonitor() {
  // "udev", not "kernel": permissions and access lists exist only when udev has run its rules.
  monitor_.reset(udev_monitor_new_from_netlink(context_.get(), "udev"));
  if (!monitor_) return;
  // Filters in the kernel, so that events of other subsystems do not wake this process.
  udev_monitor_filter_add_match_subsystem_devtype(monitor_.get(), kGeneric, nullptr);
  udev_monitor_filter_add_match_subsystem_devtype(monitor_.get(), kScsi, kUnit);
  if (udev_monitor_enable_receiving(monitor_.get()) < 0) monitor_.reset();
}

std::vector<ScsiUnit> UdevUnitSource::Enumerate() {
  std::vector<ScsiUnit> units;
  const UdevEnumerate enumerate(context_ ? udev_enumerate_new(context_.get()) : nullptr);
  if (!enumerate) return units;
  udev_enumerate_add_match_subsystem(enumerate.get(), kGeneric);
  udev_enumerate_add_match_subsystem(enumerate.get(), kScsi);
  udev_enumerate_scan_devices(enumerate.get());
  udev_list_entry* entry = nullptr;
  udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(enumerate.get())) {
    const UdevDevice device(udev_device_new_from_syspath(context_.get(), udev_list_entry_get_name(entry)));
    if (!device || !IsUnitOrNode(device.get())) continue;
    if (auto unit = ReadUnit(device.get())) units.push_back(std::move(*unit));
  }
  return units;
}

std::optional<ScsiUnit> UdevUnitSource::Look(const std::string& path) {
  const UdevDevice device(context_ ? udev_device_new_from_syspath(context_.get(), SysPath(path).c_str()) : nullptr);
  return device ? ReadUnit(device.get()) : std::nullopt;
}

std::uint64_t UdevUnitSource::LatestSequence() {
  std::uint64_t sequence = 0;
  std::ifstream("/sys/kernel/uevent_seqnum") >> sequence;
  return sequence;
}

Notice UdevUnitSource::Receive() {
  if (!monitor_) return {};
  errno = 0;
  const UdevDevice device(udev_monitor_receive_device(monitor_.get()));
  if (!device) return AfterNothingReceived(errno);
  Notice notice;
  const char* action = udev_device_get_action(device.get());
  const char* path = udev_device_get_devpath(device.get());
  const bool gone = action && std::string(action) == "remove";
  notice.kind = gone ? Notice::Kind::kGone : Notice::Kind::kSeen;
  notice.path = path ? path : "";
  notice.sequence = udev_device_get_seqnum(device.get());
  if (!gone) notice.unit = ReadUnit(device.get());
  return notice;
}

Notice UdevUnitSource::AfterNothingReceived(int error) {
  switch (error) {
    case 0:
    case EAGAIN:
    case EINTR:
      return {};
    case ENOBUFS:
      break;  // the kernel dropped messages; those that survived still follow
    default:
      StartMonitor();  // a monitor that fails otherwise would wake us for ever
      break;
  }
  return {Notice::Kind::kLost};
}

int UdevUnitSource::Descriptor() const {
  return monitor_ ? udev_monitor_get_fd(monitor_.get()) : -1;
}

std::string UdevUnitSource::WhyDeaf() const {
  if (!monitor_) return "udev's monitor could not be started, so plugging in a camera goes unnoticed here.";
  if (ListensToNobody(Descriptor()) || ::access("/run/udev/control", F_OK) != 0) {
    return "No udev runs here (a container?), so plugging in a camera goes unnoticed; run this on the host, or share "
           "the host's /run/udev with the container.";
  }
  return "";
}

}  // namespace darwin::udev
