#ifndef KELVA_DARWIN_CONFORMANCE_REGISTRY_TEST_H_
#define KELVA_DARWIN_CONFORMANCE_REGISTRY_TEST_H_

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "darwin/conformance/Machine.h"

namespace conformance {

inline constexpr const char* kDriver = "com_kelva_Glimmer";
inline constexpr const char* kDiskDriver = "com_kelva_Glimmer_ms";
/// No handle is ever this number.
inline constexpr io_object_t kUntouched = 0x5A5A5A5A;

/// Owns one reference to a registry object; 0 when empty.
class Object {
 public:
  Object() = default;
  explicit Object(io_object_t number) : number_(number) {}
  Object(Object&& other) noexcept : number_(other.Take()) {}
  Object& operator=(Object&& other) noexcept {
    IOObjectRelease(std::exchange(number_, other.Take()));
    return *this;
  }
  ~Object() { IOObjectRelease(number_); }

  io_object_t Number() const { return number_; }
  io_object_t Take() { return std::exchange(number_, io_object_t{0}); }
  explicit operator bool() const { return number_ != 0; }

 private:
  io_object_t number_ = 0;
};

/// Owns one reference to a CoreFoundation object.
template <class Ref>
class Owned {
 public:
  explicit Owned(Ref ref) : ref_(ref) {}
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  ~Owned() {
    if (ref_ != nullptr) CFRelease(ref_);
  }
  Ref Get() const { return ref_; }

 private:
  const Ref ref_;
};

/// A notification port whose source is in this thread's run loop.
class Port {
 public:
  Port() : port_(IONotificationPortCreate(MACH_PORT_NULL)) {
    CFRunLoopAddSource(CFRunLoopGetCurrent(), IONotificationPortGetRunLoopSource(port_), kCFRunLoopDefaultMode);
  }
  Port(const Port&) = delete;
  Port& operator=(const Port&) = delete;
  ~Port() { IONotificationPortDestroy(port_); }
  IONotificationPortRef Get() const { return port_; }

 private:
  const IONotificationPortRef port_;
};

inline Object NextOf(const Object& iterator) {
  return Object(IOIteratorNext(iterator.Number()));
}

/// What is left in an iterator, in its order.
inline std::vector<Object> Drain(const Object& iterator) {
  std::vector<Object> objects;
  while (Object object = NextOf(iterator)) objects.push_back(std::move(object));
  return objects;
}

/// The services that a dictionary matches; consumes it.
inline std::vector<Object> Find(CFDictionaryRef matching) {
  io_iterator_t iterator = 0;
  EXPECT_EQ(IOServiceGetMatchingServices(MACH_PORT_NULL, matching, &iterator), kIOReturnSuccess);
  return Drain(Object(iterator));
}

/// The only service that a dictionary matches; consumes it.
inline Object FindOne(CFDictionaryRef matching) {
  std::vector<Object> found = Find(matching);
  EXPECT_EQ(found.size(), 1u);
  return found.empty() ? Object() : std::move(found.front());
}

/// The service of the only camera.
inline Object FindCamera() {
  return FindOne(MatchingCameras());
}

inline Object ParentOf(const Object& entry) {
  io_registry_entry_t parent = 0;
  IORegistryEntryGetParentEntry(entry.Number(), kIOServicePlane, &parent);
  return Object(parent);
}

/// A text property; "(none)" when the entry has none of that name.
inline std::string TextProperty(const Object& entry, const char* key) {
  const Owned<CFStringRef> name(CFStringCreateWithCString(kCFAllocatorDefault, key, kCFStringEncodingMacRoman));
  const Owned<CFTypeRef> value(IORegistryEntryCreateCFProperty(entry.Number(), name.Get(), kCFAllocatorDefault, 0));
  if (value.Get() == nullptr || CFGetTypeID(value.Get()) != CFStringGetTypeID()) return "(none)";
  char text[256] = "";
  CFStringGetCString(static_cast<CFStringRef>(value.Get()), text, sizeof text, kCFStringEncodingUTF8);
  return text;
}

inline std::string SerialOf(const Object& service) {
  return SerialOf(service.Number());
}

inline std::vector<std::string> SerialsOf(const std::vector<Object>& services) {
  std::vector<std::string> serials;
  for (const Object& service : services) serials.push_back(SerialOf(service));
  return serials;
}

/// Delivers the messages that wait, and waits for no others.
inline void RunPending() {
  while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true) == kCFRunLoopRunHandledSource) {
  }
}

/// Gives each test a machine of its own, and checks that the test gives back everything that it obtained.
class RegistryTest : public ::testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(machine_->StillHeld(), ""); }

  Machine& TheMachine() { return *machine_; }
  int Plug(const Camera& camera = {}) { return machine_->Plug(camera); }
  void Unplug(int camera) { machine_->Unplug(camera); }

 private:
  const std::unique_ptr<Machine> machine_ = MakeMachine();
};

}  // namespace conformance

#endif  // KELVA_DARWIN_CONFORMANCE_REGISTRY_TEST_H_
