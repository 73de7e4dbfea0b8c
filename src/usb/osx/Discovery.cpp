// Finds cameras: those attached now, those attached later, and those that the system took for compact discs.

#include <cstdio>
#include <utility>

#include "IoKitOwners.h"
#include "OsxCamera.h"
#include "Services.h"
#include "wire/RegistryNames.h"

using kelva::CfRef;
using kelva::Drain;
using kelva::IoObject;
using kelva::MakeCamera;
using kelva::MakeString;

const char* const OsxCamera::kDriverNames[] = {wire::kDriverClass, wire::kMassStorageDriverClass, nullptr};
IONotificationPortRef OsxCamera::notifyPort = nullptr;
void (*OsxCamera::cameraCb)(boost::shared_ptr<Camera> camera, void* context) = nullptr;
void (*OsxCamera::badCameraCb)(void* context) = nullptr;

namespace {

/// Restricts a matching dictionary to this maker's devices.
void RequireVendor(CFMutableDictionaryRef matching) {
  const CfRef<CFMutableDictionaryRef> properties(CFDictionaryCreateMutable(
      kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  CFDictionarySetValue(properties.Get(), MakeString(wire::kVendorName).Get(), MakeString(wire::kVendor).Get());
  CFDictionarySetValue(matching, MakeString(wire::kPropertyMatchName).Get(), properties.Get());
}

/// Registers for the life of the process: the iterator is never released.
io_iterator_t RegisterForGood(IONotificationPortRef port, const char* className, IOServiceMatchingCallback handler,
                              void* context) {
  return kelva::RegisterFirstMatch(port, className, handler, context).Release();
}

}  // namespace

std::vector<boost::shared_ptr<Camera>> OsxCamera::EnumerateOsxCameras(bool anyVendor) {
  std::vector<boost::shared_ptr<Camera>> cameras;
  for (const char* const* name = kDriverNames; *name != nullptr; ++name) {
    const CFMutableDictionaryRef matching = IOServiceMatching(*name);  // consumed by the search
    if (!anyVendor) RequireVendor(matching);
    io_iterator_t found = 0;
    const kern_return_t returnCode = IOServiceGetMatchingServices(kelva::kDefaultPort, matching, &found);
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
  if (notifyPort == nullptr) notifyPort = kelva::MakeNotificationPort();
}

void OsxCamera::ListenForOsxCameraAttach(void (*callback)(boost::shared_ptr<Camera>, void*), void* context) {
  if (callback == nullptr) return;
  SetupNotifyPort();
  cameraCb = callback;
  for (const char* const* name = kDriverNames; *name != nullptr; ++name) {
    AddDeviceBounce(context, RegisterForGood(notifyPort, *name, AddDeviceBounce, context));
  }
}

void OsxCamera::AddDeviceBounce(void* context, unsigned int iterator) {
  Drain(iterator, [context](IoObject service) { cameraCb(MakeCamera(std::move(service)), context); });
}

void OsxCamera::ListenForOsxBadCameraAttach(void (*callback)(void*), void* context) {
  if (callback == nullptr) return;
  SetupNotifyPort();
  badCameraCb = callback;
  BadCameraBounce(context, RegisterForGood(notifyPort, wire::kCompactDiscClass, BadCameraBounce, context));
}

void OsxCamera::BadCameraBounce(void* context, unsigned int iterator) {
  Drain(iterator, [context](const IoObject& service) {
    if (badCameraCb != nullptr && kelva::IsBadCamera(service.Get())) badCameraCb(context);
  });
}
