// Collects what the I/O registry shows of every camera on this machine.

#include "apps/doctor/macos/Survey.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

#include "src/usb/osx/IoKitOwners.h"
#include "src/usb/osx/RegistryText.h"
#include "src/usb/osx/Services.h"
#include "wire/RegistryNames.h"

namespace apps::doctor::macos {
namespace {

using kelva::IoObject;
using kelva::ParentOf;
using kelva::TextProperty;
using kelva::TextPropertyAbove;

// Names that macOS gives: the classes of its USB devices and of devices that have answered an inquiry, a USB device's maker,
// and who has made a user client.
constexpr const char* kUsbDeviceClass = "IOUSBHostDevice";
constexpr const char* kInquiryClass = "IOSCSIPeripheralDeviceNub";
constexpr const char* kUsbVendorName = "USB Vendor Name";
constexpr const char* kCreatorName = "IOUserClientCreator";

constexpr std::array kDrivers{wire::kDriverClass, wire::kMassStorageDriverClass};

std::vector<IoObject> Drained(io_iterator_t iterator) {
  const IoObject owner(iterator);
  std::vector<IoObject> objects;
  while (IoObject object{IOIteratorNext(iterator)}) objects.push_back(std::move(object));
  return objects;
}

std::vector<IoObject> ServicesOf(const char* className) {
  io_iterator_t found = 0;
  if (IOServiceGetMatchingServices(kelva::kDefaultPort, IOServiceMatching(className), &found) != kIOReturnSuccess) {
    return {};
  }
  return Drained(found);
}

std::vector<IoObject> ChildrenOf(io_registry_entry_t entry) {
  io_iterator_t children = 0;
  if (IORegistryEntryGetChildIterator(entry, wire::kServicePlane, &children) != kIOReturnSuccess) return {};
  return Drained(children);
}

// A user client is its driver's child, as long as the program that made it has it open.
void AddHolders(io_service_t driver, std::vector<Holder>& holders) {
  for (const IoObject& client : ChildrenOf(driver)) {
    const auto holder = ReadCreator(TextProperty(client.Get(), kCreatorName));
    if (!holder || holder->pid == ::getpid()) continue;
    if (std::find(holders.begin(), holders.end(), *holder) == holders.end()) holders.push_back(*holder);
  }
}

/// The entries that belong to a camera that has been found. An object keeps its number while it is referred to.
class Seen {
 public:
  void AddWithAllAbove(IoObject entry) {
    while (entry && !Has(entry)) {
      IoObject parent = ParentOf(entry.Get());
      entries_.push_back(std::move(entry));
      entry = std::move(parent);
    }
  }
  bool Has(const IoObject& entry) const {
    return std::any_of(entries_.begin(), entries_.end(),
                       [&](const IoObject& other) { return other.Get() == entry.Get(); });
  }

 private:
  std::vector<IoObject> entries_;
};

CameraFacts ReadDriver(io_service_t service, const char* className, const Probe& probe) {
  CameraFacts camera;
  camera.serial = TextPropertyAbove(service, wire::kSerialName);
  camera.isSetUp = true;
  camera.driver = className;
  camera.namesVendor = TextProperty(service, wire::kVendorName) == wire::kVendor;
  AddHolders(service, camera.holders);
  // A camera carries one command at a time: a question would disturb the program that holds it.
  if (camera.holders.empty()) camera.answer = probe(service);
  return camera;
}

}  // namespace

std::optional<Holder> ReadCreator(const std::string& text) {
  constexpr std::string_view kStart = "pid ";
  if (!text.starts_with(kStart)) return std::nullopt;
  Holder holder;
  const char* const end = text.data() + text.size();
  const auto [after, error] = std::from_chars(text.data() + kStart.size(), end, holder.pid);
  if (error != std::errc() || holder.pid <= 0) return std::nullopt;
  const std::string_view rest(after, static_cast<std::size_t>(end - after));
  holder.name = rest.starts_with(", ") && rest.size() > 2 ? rest.substr(2) : "a process";
  return holder;
}

std::vector<Holder> HoldersBySerial(const std::string& serial) {
  std::vector<Holder> holders;
  if (serial.empty()) return holders;
  for (const char* className : kDrivers) {
    for (const IoObject& service : ServicesOf(className)) {
      if (TextPropertyAbove(service.Get(), wire::kSerialName) == serial) AddHolders(service.Get(), holders);
    }
  }
  return holders;
}

std::vector<CameraFacts> SurveyRegistry(const Probe& probe) {
  std::vector<CameraFacts> cameras;
  Seen seen;
  for (const char* className : kDrivers) {
    for (IoObject& service : ServicesOf(className)) {
      cameras.push_back(ReadDriver(service.Get(), className, probe));
      seen.AddWithAllAbove(std::move(service));
    }
  }
  for (IoObject& service : ServicesOf(wire::kCompactDiscClass)) {
    if (!kelva::IsBadCamera(service.Get())) continue;
    cameras.push_back({.serial = TextPropertyAbove(service.Get(), wire::kSerialName), .isSetUp = true, .isDisc = true});
    seen.AddWithAllAbove(std::move(service));
  }
  // From here on: cameras that no driver has taken. Those that answered the inquiry, then those that are a USB device alone.
  for (IoObject& inquiry : ServicesOf(kInquiryClass)) {
    if (seen.Has(inquiry) || TextProperty(inquiry.Get(), wire::kVendorName) != wire::kVendor) continue;
    cameras.push_back({.serial = TextPropertyAbove(inquiry.Get(), wire::kSerialName), .isSetUp = true});
    seen.AddWithAllAbove(std::move(inquiry));
  }
  for (const IoObject& device : ServicesOf(kUsbDeviceClass)) {
    if (seen.Has(device) || TextProperty(device.Get(), kUsbVendorName) != wire::kVendor) continue;
    cameras.push_back({.serial = TextProperty(device.Get(), wire::kSerialName)});
  }
  return cameras;
}

}  // namespace apps::doctor::macos
