#ifndef KELVA_USB_OSX_IO_KIT_OWNERS_H_
#define KELVA_USB_OSX_IO_KIT_OWNERS_H_

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>

#include <utility>

#include "wire/RegistryNames.h"

namespace kelva {

/// Owns one reference to a registry object or iterator; 0 when empty.
class IoObject {
 public:
  IoObject() = default;
  explicit IoObject(io_object_t object) : object_(object) {}
  IoObject(IoObject&& other) noexcept : object_(other.Release()) {}
  IoObject& operator=(IoObject&& other) noexcept {
    Reset(other.Release());
    return *this;
  }
  ~IoObject() { Reset(); }

  io_object_t Get() const { return object_; }
  explicit operator bool() const { return object_ != 0; }

  /// Hands the reference over to the caller.
  io_object_t Release() { return std::exchange(object_, io_object_t{0}); }

  void Reset(io_object_t object = 0) {
    if (const io_object_t old = std::exchange(object_, object); old != 0) IOObjectRelease(old);
  }

 private:
  io_object_t object_ = 0;
};

/// Owns one reference to a CoreFoundation object; null when empty.
template <class Ref>
class CfRef {
 public:
  explicit CfRef(Ref ref) : ref_(ref) {}
  CfRef(CfRef&& other) noexcept : ref_(std::exchange(other.ref_, nullptr)) {}
  CfRef& operator=(CfRef&&) = delete;
  ~CfRef() {
    if (ref_ != nullptr) CFRelease(ref_);
  }

  Ref Get() const { return ref_; }
  explicit operator bool() const { return ref_ != nullptr; }

 private:
  Ref ref_;
};

/// Makes a CoreFoundation string, in the encoding in which registry strings are compared.
inline CfRef<CFStringRef> MakeString(const char* text) {
  return CfRef<CFStringRef>(CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingMacRoman));
}

/// Copies a property of the entry itself; null when the entry does not have it.
inline CfRef<CFTypeRef> CopyProperty(io_registry_entry_t entry, const char* key) {
  return CfRef<CFTypeRef>(IORegistryEntryCreateCFProperty(entry, MakeString(key).Get(), kCFAllocatorDefault, 0));
}

/// True when the property exists and equals the text.
inline bool Equals(const CfRef<CFTypeRef>& property, const CfRef<CFStringRef>& text) {
  return property && text && CFEqual(property.Get(), text.Get());
}

inline bool Equals(const CfRef<CFTypeRef>& property, const char* text) {
  return Equals(property, MakeString(text));
}

/// The entry's parent in the service plane; empty on failure.
inline IoObject ParentOf(io_registry_entry_t entry) {
  io_registry_entry_t parent = 0;
  if (IORegistryEntryGetParentEntry(entry, wire::kServicePlane, &parent) != kIOReturnSuccess) return {};
  return IoObject(parent);
}

}  // namespace kelva

#endif  // KELVA_USB_OSX_IO_KIT_OWNERS_H_
