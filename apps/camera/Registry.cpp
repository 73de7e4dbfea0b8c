#include "apps/camera/Registry.h"

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>

#include <array>
#include <utility>

namespace apps {
namespace {

constexpr const char* kDrivers[] = {"com_kelva_Glimmer", "com_kelva_Glimmer_ms"};
constexpr const char* kVendorKey = "Vendor Identification";
constexpr const char* kMaker = "Kelva";

// Owns one reference to a registry object.
class Object {
 public:
  explicit Object(io_object_t object = 0) : object_(object) {}
  Object(Object&& other) noexcept : object_(std::exchange(other.object_, 0)) {}
  Object& operator=(Object&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Object() {
    if (object_ != 0) IOObjectRelease(object_);
  }
  io_object_t Get() const { return object_; }

 private:
  io_object_t object_;
};

// Owns one CoreFoundation reference.
class Reference {
 public:
  explicit Reference(CFTypeRef object) : object_(object) {}
  Reference(const Reference&) = delete;
  Reference& operator=(const Reference&) = delete;
  ~Reference() {
    if (object_ != nullptr) CFRelease(object_);
  }
  CFTypeRef Get() const { return object_; }

 private:
  CFTypeRef object_;
};

// In the encoding in which the library compares serial numbers.
std::string TextOf(CFTypeRef value) {
  if (value == nullptr || CFGetTypeID(value) != CFStringGetTypeID()) return {};
  std::array<char, 512> text{};
  const auto string = static_cast<CFStringRef>(value);
  if (!CFStringGetCString(string, text.data(), static_cast<CFIndex>(text.size()), kCFStringEncodingMacRoman)) return {};
  return text.data();
}

std::string Property(io_object_t entry, const char* key) {
  const Reference name(CFStringCreateWithCString(kCFAllocatorDefault, key, kCFStringEncodingMacRoman));
  const Reference value(
      IORegistryEntryCreateCFProperty(entry, static_cast<CFStringRef>(name.Get()), kCFAllocatorDefault, 0));
  return TextOf(value.Get());
}

Object ParentOf(io_object_t entry) {
  io_object_t parent = 0;
  if (IORegistryEntryGetParentEntry(entry, kIOServicePlane, &parent) != kIOReturnSuccess) return Object();
  return Object(parent);
}

// The property of the entry, or of the nearest entry above it that has one.
std::string PropertyAbove(io_object_t service, const char* key) {
  std::string text = Property(service, key);
  for (Object entry = ParentOf(service); text.empty() && entry.Get() != 0; entry = ParentOf(entry.Get())) {
    text = Property(entry.Get(), key);
  }
  return text;
}

RegistryCamera Describe(io_object_t service, const char* driver) {
  return {PropertyAbove(service, "USB Serial Number"), Property(service, kVendorKey),
          Property(service, "Product Identification"), Property(service, "Product Revision Level"), driver};
}

}  // namespace

std::vector<RegistryCamera> CamerasInRegistry() {
  std::vector<RegistryCamera> cameras;
  for (const char* driver : kDrivers) {
    io_iterator_t found = 0;
    if (IOServiceGetMatchingServices(kIOMasterPortDefault, IOServiceMatching(driver), &found) != kIOReturnSuccess) {
      break;
    }
    const Object services(found);
    while (true) {
      const Object service(IOIteratorNext(services.Get()));
      if (service.Get() == 0) break;
      RegistryCamera camera = Describe(service.Get(), driver);
      if (camera.vendor == kMaker) cameras.push_back(std::move(camera));
    }
  }
  return cameras;
}

}  // namespace apps
