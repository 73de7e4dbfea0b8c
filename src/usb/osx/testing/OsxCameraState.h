#ifndef KELVA_USB_OSX_TESTING_OSX_CAMERA_STATE_H_
#define KELVA_USB_OSX_TESTING_OSX_CAMERA_STATE_H_

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "OsxCamera.h"
#include "testing/FakeFramework.h"

// The process-wide state of OsxCamera, which lives until the process ends: a test that starts from a process in which
// nobody has listened yet has to put it back. An explicit instantiation may name private members.

namespace fake {

using AttachFunction = void (*)(boost::shared_ptr<Camera>, void*);
using BadCameraFunction = void (*)(void*);

IONotificationPortRef& NotifyPort();
AttachFunction& CameraCallback();
BadCameraFunction& BadCameraCallback();

template <IONotificationPortRef* Port, AttachFunction* Attach, BadCameraFunction* BadCamera>
struct Statics {
  friend IONotificationPortRef& NotifyPort() { return *Port; }
  friend AttachFunction& CameraCallback() { return *Attach; }
  friend BadCameraFunction& BadCameraCallback() { return *BadCamera; }
};
template struct Statics<&OsxCamera::notifyPort, &OsxCamera::cameraCb, &OsxCamera::badCameraCb>;

/// A test over a new framework, in a process in which nobody has listened.
class Test : public testing::Test {
 protected:
  Test() {
    Current() = std::make_unique<Framework>();
    NotifyPort() = nullptr;
    CameraCallback() = nullptr;
    BadCameraCallback() = nullptr;
  }
  ~Test() override { EXPECT_EQ(framework().OpenObjects(), 0) << "CoreFoundation objects were not released"; }

  Framework& framework() { return Get(); }
  std::vector<std::string>& log() { return Get().log; }

  /// A camera's service with the entries above it: USB device, inquiry entry, driver service.
  io_service_t AddCamera(const std::string& name, const std::string& className = "com_kelva_Glimmer",
                         const std::string& vendor = "Kelva") {
    const io_object_t device = Get().Add({name + "'s device", "", 0, {{"USB Serial Number", name}}});
    const io_object_t inquiry = Get().Add({name + "'s inquiry", "", device, {}});
    return Get().Add({name, className, inquiry, {{"Vendor Identification", vendor}, {"IOClass", className}}});
  }
};

}  // namespace fake

#endif  // KELVA_USB_OSX_TESTING_OSX_CAMERA_STATE_H_
