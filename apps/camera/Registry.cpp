// What the I/O registry knows of a camera: who made it, which one it is, and which driver serves it.

#include "apps/camera/Registry.h"

#include <array>

#include "src/usb/osx/IoKitOwners.h"
#include "src/usb/osx/OsxCamera.h"
#include "wire/RegistryNames.h"

namespace apps {
namespace {

// In the encoding in which the library compares serial numbers.
std::string TextOf(CFTypeRef value) {
  if (value == nullptr || CFGetTypeID(value) != CFStringGetTypeID()) return {};
  std::array<char, 512> text{};
  const auto string = static_cast<CFStringRef>(value);
  if (!CFStringGetCString(string, text.data(), static_cast<CFIndex>(text.size()), kCFStringEncodingMacRoman)) return {};
  return text.data();
}

std::string Property(io_registry_entry_t entry, const char* key) {
  return TextOf(kelva::CopyProperty(entry, key).Get());
}

// The property of the entry, or of the nearest entry above it that has one.
std::string PropertyAbove(io_registry_entry_t service, const char* key) {
  std::string text = Property(service, key);
  for (kelva::IoObject entry = kelva::ParentOf(service); text.empty() && entry; entry = kelva::ParentOf(entry.Get())) {
    text = Property(entry.Get(), key);
  }
  return text;
}

}  // namespace

RegistryCamera FactsOf(const Camera& camera) {
  const io_service_t service = kelva::ServiceOf(camera);
  if (service == 0) return {};
  return {PropertyAbove(service, wire::kSerialName), Property(service, wire::kVendorName),
          Property(service, wire::kProductName), Property(service, wire::kRevisionName),
          Property(service, wire::kClassName)};
}

}  // namespace apps
