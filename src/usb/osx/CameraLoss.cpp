// One camera's identity and its going away.

#include "IoKitOwners.h"
#include "LossInProgress.h"
#include "OsxCamera.h"
#include "OsxCameraError.h"
#include "wire/RegistryNames.h"

using kelva::CfRef;
using kelva::IoObject;

namespace {

// kIOMessageServiceIsTerminated, whose header is not among those that this folder includes.
constexpr unsigned int kServiceIsTerminated = 0xE0000010;

}  // namespace

void OsxCamera::ListenForCameraLost(void (*callback)(void*), void* context) {
  if (notification_ == 0) {
    // The system dereferences the port, so a camera watched before any attach listening needs one too.
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
  if (messageType != kServiceIsTerminated) return;
  auto* self = static_cast<OsxCamera*>(camera);
  const kelva::LossInProgress loss(self);
  if (self->lostCb_ != nullptr) self->lostCb_(self->lostContext_);
  // After the callback, which still sees a camera that is not disconnected.
  if (loss.CameraIsAlive()) self->disconnected_ = true;
}

bool OsxCamera::WasDisconnected() {
  return disconnected_;
}

bool OsxCamera::CompareSn(const char* serial) const {
  const CfRef<CFStringRef> wanted = kelva::MakeString(serial);
  IOObjectRetain(service_);
  bool matches = false;
  // Up to the registry's root: the serial sits on an ancestor, and a match does not stop the walk.
  for (IoObject entry(service_); entry; entry = kelva::ParentOf(entry.Get())) {
    if (Equals(kelva::CopyProperty(entry.Get(), wire::kSerialName), wanted)) matches = true;
  }
  return matches;
}
