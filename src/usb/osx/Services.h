#ifndef KELVA_USB_OSX_SERVICES_H_
#define KELVA_USB_OSX_SERVICES_H_

#include <boost/shared_ptr.hpp>
#include <utility>

#include "IoKitOwners.h"
#include "OsxCamera.h"
#include "OsxCameraError.h"
#include "base/FirstException.h"
#include "wire/RegistryNames.h"

// What looking for cameras and listening for them have in common.

namespace kelva {

// The system's two names for this port do not exist on every macOS: one is deprecated from 12.0 on, and the other came
// with 12.0. Both stand for the null port.
inline constexpr mach_port_t kDefaultPort = MACH_PORT_NULL;

// kIOMessageServiceIsTerminated. Its header, IOKit/IOMessage.h, is not needed for anything else here.
inline constexpr unsigned int kServiceIsTerminated = 0xE0000010;

/// Makes a notification port, scheduled on the calling thread's run loop. Throws OsxCameraError.
inline IONotificationPortRef MakeNotificationPort() {
  const IONotificationPortRef port = IONotificationPortCreate(kDefaultPort);
  if (port == nullptr) throw OsxCameraError("IONotificationPortCreate() failed.");
  CFRunLoopAddSource(CFRunLoopGetCurrent(), IONotificationPortGetRunLoopSource(port), kCFRunLoopDefaultMode);
  return port;
}

/// Owns a notification port on the run loop of the thread that makes it.
class NotificationPort {
 public:
  NotificationPort() : port_(MakeNotificationPort()) {}
  ~NotificationPort() { IONotificationPortDestroy(port_); }
  NotificationPort(const NotificationPort&) = delete;
  NotificationPort& operator=(const NotificationPort&) = delete;

  IONotificationPortRef Get() const { return port_; }

 private:
  const IONotificationPortRef port_;
};

/// Registers a first-match notification for a class. The notification lasts as long as its iterator.
inline IoObject RegisterFirstMatch(IONotificationPortRef port, const char* className, IOServiceMatchingCallback handler,
                                   void* context) {
  io_iterator_t iterator = 0;
  if (IOServiceAddMatchingNotification(port, wire::kFirstMatchType, IOServiceMatching(className), handler, context,
                                       &iterator) != kIOReturnSuccess) {
    throw OsxCameraError("IOServiceAddMatchingNotification() failed.");
  }
  return IoObject(iterator);
}

/// Reports each service of the iterator. A report that throws does not end the loop: services left in the iterator
/// would be lost, and the notification would not be armed again. The first exception goes on to the caller at the end.
template <class Report>
void Drain(io_iterator_t iterator, Report report) {
  base::FirstException exceptions;
  while (IoObject service{IOIteratorNext(iterator)}) exceptions.Try([&] { report(std::move(service)); });
  exceptions.Rethrow();
}

/// Takes over the reference to the service.
inline boost::shared_ptr<Camera> MakeCamera(IoObject service) {
  auto* camera = new OsxCamera(service.Get());
  service.Release();
  return boost::shared_ptr<Camera>(camera);
}

/// A compact-disc service is a camera when the inquiry data two levels above it is a camera's.
inline bool IsBadCamera(io_service_t service) {
  const IoObject parent = ParentOf(service);
  if (!parent) return false;
  const IoObject grandparent = ParentOf(parent.Get());
  if (!grandparent) return false;
  const CfRef<CFTypeRef> vendor = CopyProperty(grandparent.Get(), wire::kVendorName);
  const CfRef<CFTypeRef> revision = CopyProperty(grandparent.Get(), wire::kRevisionName);
  return vendor && revision && Equals(vendor, wire::kVendor) && Equals(revision, wire::kBadCameraRevision);
}

}  // namespace kelva

#endif  // KELVA_USB_OSX_SERVICES_H_
