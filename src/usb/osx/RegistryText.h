#ifndef KELVA_USB_OSX_REGISTRY_TEXT_H_
#define KELVA_USB_OSX_REGISTRY_TEXT_H_

#include <array>
#include <string>

#include "IoKitOwners.h"

namespace kelva {

/// The text of a property, in the encoding in which serial numbers are compared. Empty for null, for another type and
/// for more than 511 bytes.
inline std::string TextOf(const CfRef<CFTypeRef>& value) {
  if (!value || CFGetTypeID(value.Get()) != CFStringGetTypeID()) return {};
  std::array<char, 512> text{};
  const auto string = static_cast<CFStringRef>(value.Get());
  if (!CFStringGetCString(string, text.data(), static_cast<CFIndex>(text.size()), kCFStringEncodingMacRoman)) return {};
  return text.data();
}

/// A property of the entry itself; empty when it has none.
inline std::string TextProperty(io_registry_entry_t entry, const char* key) {
  return TextOf(CopyProperty(entry, key));
}

/// The property of the entry, or of the nearest entry above it that has one.
inline std::string TextPropertyAbove(io_registry_entry_t service, const char* key) {
  std::string text = TextProperty(service, key);
  for (IoObject entry = ParentOf(service); text.empty() && entry; entry = ParentOf(entry.Get())) {
    text = TextProperty(entry.Get(), key);
  }
  return text;
}

}  // namespace kelva

#endif  // KELVA_USB_OSX_REGISTRY_TEXT_H_
