#include "src/ui/linux/KelvaHelper/AttachListener.h"

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>
#include <gtest/gtest.h>

#include <string>

#include "darwin/registry/Accounting.h"
#include "darwin/virtual/VirtualRegistry.h"
#include "src/ui/linux/KelvaHelper/DesktopLauncher.h"
#include "src/usb/osx/OsxCameraError.h"

namespace {

int launches = 0;
bool refuseRegistrations = false;

}  // namespace

// In place of the real launch, which this program does not link.
void helper::LaunchDesktopApplication() {
  ++launches;
}

// The linker sends the library's registrations here, so that one can be refused.
extern "C" kern_return_t __real_IOServiceAddMatchingNotification(IONotificationPortRef port, const io_name_t type,
                                                                 CFDictionaryRef matching,
                                                                 IOServiceMatchingCallback callback, void* context,
                                                                 io_iterator_t* iterator);
extern "C" kern_return_t __wrap_IOServiceAddMatchingNotification(IONotificationPortRef port, const io_name_t type,
                                                                 CFDictionaryRef matching,
                                                                 IOServiceMatchingCallback callback, void* context,
                                                                 io_iterator_t* iterator) {
  if (!refuseRegistrations) {
    return __real_IOServiceAddMatchingNotification(port, type, matching, callback, context, iterator);
  }
  CFRelease(matching);
  return kIOReturnUnsupported;
}

namespace helper {
namespace {

darwin::CameraDescription Camera(const std::string& serial) {
  darwin::CameraDescription camera;
  camera.serial = serial;
  camera.vendor = "Kelva";
  camera.product = "Camera";
  camera.revision = "1.00";
  return camera;
}

void RunLoopTurns() {
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, 0);
}

class AttachListenerTest : public testing::Test {
 protected:
  AttachListenerTest() {
    launches = 0;
    refuseRegistrations = false;
  }

  /// A registration lasts as long as the process, so all tests share one.
  static void Listen() {
    static const bool done = (ListenForCameras(), true);
    static_cast<void>(done);
  }

  darwin::VirtualRegistry registry_;
};

TEST_F(AttachListenerTest, RefusedRegistrationIsAnErrorForTheCaller) {
  refuseRegistrations = true;
  try {
    ListenForCameras();
    FAIL() << "nothing was thrown";
  } catch (const OsxCameraError& error) {
    EXPECT_EQ(std::string(error.what()).rfind("OsxCameraError: IOServiceAddMatchingNotification() failed.\n", 0), 0U);
  }
}

TEST_F(AttachListenerTest, CamerasPresentAtStartLaunchNothing) {
  registry_.AttachCamera(Camera("KV0001"));
  registry_.AttachCamera(Camera("KV0002"));
  Listen();
  RunLoopTurns();
  EXPECT_EQ(launches, 0);
}

TEST_F(AttachListenerTest, EachLaterCameraLaunchesOnce) {
  Listen();
  registry_.AttachCamera(Camera("KV0001"));
  RunLoopTurns();
  EXPECT_EQ(launches, 1);
  registry_.AttachCamera(Camera("KV0002"));
  registry_.AttachCamera(Camera("KV0003"));
  RunLoopTurns();
  EXPECT_EQ(launches, 3);
}

TEST_F(AttachListenerTest, SameCameraPluggedInAgainLaunchesAgain) {
  Listen();
  for (int times = 1; times <= 3; ++times) {
    const darwin::EntryId camera = registry_.AttachCamera(Camera("KV0001"));
    RunLoopTurns();
    registry_.Detach(camera);
    RunLoopTurns();
    EXPECT_EQ(launches, times);
  }
}

TEST_F(AttachListenerTest, CameraThatHasGoneBeforeItsReportStillLaunchesOnce) {
  Listen();
  registry_.Detach(registry_.AttachCamera(Camera("KV0001")));
  RunLoopTurns();
  EXPECT_EQ(launches, 1);
}

TEST_F(AttachListenerTest, NothingOfACameraIsKept) {
  Listen();
  const std::size_t before = darwin::AccountForRegistry().references;
  registry_.AttachCamera(Camera("KV0001"));
  RunLoopTurns();
  EXPECT_EQ(launches, 1);
  EXPECT_EQ(darwin::AccountForRegistry().references, before);
}

TEST_F(AttachListenerTest, CallbackReadsTheFlagThroughItsContext) {
  bool flag = false;
  Callback(boost::shared_ptr<::Camera>(), &flag);
  EXPECT_EQ(launches, 0);
  flag = true;
  Callback(boost::shared_ptr<::Camera>(), &flag);
  EXPECT_EQ(launches, 1);
}

}  // namespace
}  // namespace helper
