// Tells a camera's owner when the camera goes away, and recognises a camera by its serial number.

#include "IoKitOwners.h"
#include "LossInProgress.h"
#include "OsxCamera.h"
#include "OsxCameraError.h"
#include "Services.h"
#include "wire/RegistryNames.h"

using kelva::CfRef;
using kelva::IoObject;

void OsxCamera::ListenForCameraLost(void (*callback)(void*), void* context) {
  if (notification_ == 0) {
    // The call below dereferences the port, so it must exist even when nobody has listened for attaches yet.
    SetupNotifyPort();
    io_object_t notification = 0;
    if (IOServiceAddInterestNotification(notifyPort, service_, wire::kGeneralInterestType, CameraMessage, this,
                                         &notification) != kIOReturnSuccess) {
      throw OsxCameraError("IOServiceAddInterestNotifaction() failed.");
    }
    notification_ = notification;  // only now: a refused call may have written the handle
  }
  lostCb_ = callback;
  lostContext_ = context;
}

void OsxCamera::CameraMessage(void* camera, unsigned int, unsigned int messageType, void*) {
  if (messageType != kelva::kServiceIsTerminated) return;
  auto* self = static_cast<OsxCamera*>(camera);
  const kelva::LossInProgress loss(self);
  if (self->lostCb_ != nullptr) self->lostCb_(self->lostContext_);
  // Set after the callback: inside it WasDisconnected() is still false.
  if (loss.CameraIsAlive()) self->disconnected_ = true;
}

bool OsxCamera::WasDisconnected() {
  return disconnected_;
}

bool OsxCamera::CompareSn(const char* serial) const {
  const CfRef<CFStringRef> wanted = kelva::MakeString(serial);
  IOObjectRetain(service_);
  bool matches = false;
  // The serial number belongs to an ancestor, the USB device. The walk always goes up to the registry's root.
  for (IoObject entry(service_); entry; entry = kelva::ParentOf(entry.Get())) {
    if (Equals(kelva::CopyProperty(entry.Get(), wire::kSerialName), wanted)) matches = true;
  }
  return matches;
}
