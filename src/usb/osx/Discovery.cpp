// Finds cameras: those attached now, those attached later, and those that the system took for compact discs.

#include <cstdio>
#include <exception>
#include <utility>

#include "IoKitOwners.h"
#include "OsxCamera.h"
#include "OsxCameraError.h"
#include "wire/RegistryNames.h"

using kelva::CfRef;
using kelva::CopyProperty;
using kelva::IoObject;
using kelva::MakeString;
using kelva::ParentOf;

const char* const OsxCamera::kDriverNames[] = {wire::kDriverClass, wire::kMassStorageDriverClass, nullptr};
IONotificationPortRef OsxCamera::notifyPort = nullptr;
void (*OsxCamera::cameraCb)(boost::shared_ptr<Camera> camera, void* context) = nullptr;
void (*OsxCamera::badCameraCb)(void* context) = nullptr;

namespace {

// The system's two names for this port do not exist on every macOS: one is deprecated from 12.0 on, and the other came
// with 12.0. Both stand for the null port.
constexpr mach_port_t kDefaultPort = MACH_PORT_NULL;

/// Takes over the reference to the service.
boost::shared_ptr<Camera> MakeCamera(IoObject service) {
  auto* camera = new OsxCamera(service.Get());
  service.Release();
  return boost::shared_ptr<Camera>(camera);
}

/// Restricts a matching dictionary to this maker's devices.
void RequireVendor(CFMutableDictionaryRef matching) {
  const CfRef<CFMutableDictionaryRef> properties(CFDictionaryCreateMutable(
      kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  CFDictionarySetValue(properties.Get(), MakeString(wire::kVendorName).Get(), MakeString(wire::kVendor).Get());
  CFDictionarySetValue(matching, MakeString(wire::kPropertyMatchName).Get(), properties.Get());
}

/// Registers a first-match notification for a class. The iterator is kept for the life of the process: releasing it
/// would end the notification.
io_iterator_t RegisterFirstMatch(IONotificationPortRef port, const char* className, IOServiceMatchingCallback handler,
                                 void* context) {
  io_iterator_t iterator = 0;
  if (IOServiceAddMatchingNotification(port, wire::kFirstMatchType, IOServiceMatching(className), handler, context,
                                       &iterator) != kIOReturnSuccess) {
    throw OsxCameraError("IOServiceAddMatchingNotification() failed.");
  }
  return iterator;
}

/// A compact-disc service is a camera when the inquiry data two levels above it is a camera's.
bool IsBadCamera(io_service_t service) {
  const IoObject parent = ParentOf(service);
  if (!parent) return false;
  const IoObject grandparent = ParentOf(parent.Get());
  if (!grandparent) return false;
  const CfRef<CFTypeRef> vendor = CopyProperty(grandparent.Get(), wire::kVendorName);
  const CfRef<CFTypeRef> revision = CopyProperty(grandparent.Get(), wire::kRevisionName);
  return vendor && revision && Equals(vendor, wire::kVendor) && Equals(revision, wire::kBadCameraRevision);
}

/// Reports each service of the iterator. A report that throws does not end the loop: services left in the iterator
/// would be lost, and the notification would not be armed again. The first exception goes on to the caller at the end.
template <class Report>
void Drain(io_iterator_t iterator, Report report) {
  std::exception_ptr first;
  while (IoObject service{IOIteratorNext(iterator)}) {
    try {
      report(std::move(service));
    } catch (...) {
      if (first == nullptr) first = std::current_exception();
    }
  }
  if (first != nullptr) std::rethrow_exception(first);
}

}  // namespace

std::vector<boost::shared_ptr<Camera>> OsxCamera::EnumerateOsxCameras(bool anyVendor) {
  std::vector<boost::shared_ptr<Camera>> cameras;
  for (const char* const* name = kDriverNames; *name != nullptr; ++name) {
    const CFMutableDictionaryRef matching = IOServiceMatching(*name);  // consumed by the search
    if (!anyVendor) RequireVendor(matching);
    io_iterator_t found = 0;
    const kern_return_t returnCode = IOServiceGetMatchingServices(kDefaultPort, matching, &found);
    if (returnCode != kIOReturnSuccess) {
      std::printf("IOServiceGetMatchingServices() FAILED = 0x%x\n", static_cast<unsigned int>(returnCode));
      return cameras;
    }
    const IoObject iterator(found);
    while (IoObject service{IOIteratorNext(iterator.Get())}) cameras.push_back(MakeCamera(std::move(service)));
  }
  return cameras;
}

void OsxCamera::SetupNotifyPort() {
  if (notifyPort != nullptr) return;
  notifyPort = IONotificationPortCreate(kDefaultPort);
  if (notifyPort == nullptr) throw OsxCameraError("IONotificationPortCreate() failed.");
  CFRunLoopAddSource(CFRunLoopGetCurrent(), IONotificationPortGetRunLoopSource(notifyPort), kCFRunLoopDefaultMode);
}

void OsxCamera::ListenForOsxCameraAttach(void (*callback)(boost::shared_ptr<Camera>, void*), void* context) {
  if (callback == nullptr) return;
  SetupNotifyPort();
  cameraCb = callback;
  for (const char* const* name = kDriverNames; *name != nullptr; ++name) {
    AddDeviceBounce(context, RegisterFirstMatch(notifyPort, *name, AddDeviceBounce, context));
  }
}

void OsxCamera::AddDeviceBounce(void* context, unsigned int iterator) {
  Drain(iterator, [context](IoObject service) { cameraCb(MakeCamera(std::move(service)), context); });
}

void OsxCamera::ListenForOsxBadCameraAttach(void (*callback)(void*), void* context) {
  if (callback == nullptr) return;
  SetupNotifyPort();
  badCameraCb = callback;
  BadCameraBounce(context, RegisterFirstMatch(notifyPort, wire::kCompactDiscClass, BadCameraBounce, context));
}

void OsxCamera::BadCameraBounce(void* context, unsigned int iterator) {
  Drain(iterator, [context](const IoObject& service) {
    if (badCameraCb != nullptr && IsBadCamera(service.Get())) badCameraCb(context);
  });
}
