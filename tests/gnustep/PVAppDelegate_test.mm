#import "src/ui/osx/KelvaHelper/PVAppDelegate.h"

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#import <objc/runtime.h>

#include <string>

#import "tests/gnustep/WorkspaceRecorder.h"

#include "darwin/registry/Accounting.h"
#include "darwin/virtual/VirtualRegistry.h"
#include "tests/gnustep/ErrorText.h"

namespace {

bool refuseRegistrations = false;

}  // namespace

// The linker sends the library's registrations here, so that one can be refused.
extern "C" kern_return_t __real_IOServiceAddMatchingNotification(IONotificationPortRef, const io_name_t,
                                                                 CFDictionaryRef, IOServiceMatchingCallback, void*,
                                                                 io_iterator_t*);
extern "C" kern_return_t __wrap_IOServiceAddMatchingNotification(IONotificationPortRef port, const io_name_t type,
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

namespace {

darwin::CameraDescription Camera(const std::string& serial) {
  darwin::CameraDescription camera;
  camera.serial = serial;
  camera.vendor = "Kelva";
  camera.product = "Camera";
  camera.revision = "1.00";
  return camera;
}

/// Does what the main run loop would do by itself. Registrations last as long as the process, so each test runs in one
/// of its own.
void RunLoopTurns() {
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, 0);
}

class PVAppDelegateTest : public testing::Test {
 protected:
  PVAppDelegateTest() {
    Workspace() = WorkspaceRecord();
    refuseRegistrations = false;
  }
  ~PVAppDelegateTest() override { [delegate_ release]; }

  void FinishLaunching() { [delegate_ applicationDidFinishLaunching:nil]; }

  darwin::VirtualRegistry registry_;
  PVAppDelegate* delegate_ = [[PVAppDelegate alloc] init];
};

TEST_F(PVAppDelegateTest, HasItsOneMethodAndNothingElse) {
  unsigned count = 0;
  Method* methods = class_copyMethodList([PVAppDelegate class], &count);
  ASSERT_EQ(count, 1U);
  EXPECT_TRUE(sel_isEqual(method_getName(methods[0]), @selector(applicationDidFinishLaunching:)));
  free(methods);
  free(class_copyIvarList([PVAppDelegate class], &count));
  EXPECT_EQ(count, 0U);
  free(class_copyPropertyList([PVAppDelegate class], &count));
  EXPECT_EQ(count, 0U);
}

TEST_F(PVAppDelegateTest, IsAnApplicationDelegateDerivedFromNSObject) {
  EXPECT_EQ([PVAppDelegate superclass], [NSObject class]);
  unsigned count = 0;
  Protocol* __unsafe_unretained* protocols = class_copyProtocolList([PVAppDelegate class], &count);
  ASSERT_EQ(count, 1U);
  EXPECT_STREQ(protocol_getName(protocols[0]), "NSApplicationDelegate");
  free(protocols);
}

TEST_F(PVAppDelegateTest, CameraPresentAtStartLaunchesNothing) {
  registry_.AttachCamera(Camera("KV0001"));
  FinishLaunching();
  RunLoopTurns();
  EXPECT_TRUE(Workspace().launches.empty());
}

TEST_F(PVAppDelegateTest, LaterCameraLaunchesOnce) {
  registry_.AttachCamera(Camera("KV0001"));
  FinishLaunching();
  registry_.AttachCamera(Camera("KV0002"));
  RunLoopTurns();
  EXPECT_EQ(Workspace().launches.size(), 1U);
  RunLoopTurns();
  EXPECT_EQ(Workspace().launches.size(), 1U);
}

TEST_F(PVAppDelegateTest, SameCameraPluggedInAgainLaunchesAgain) {
  FinishLaunching();
  for (int times = 1; times <= 3; ++times) {
    const darwin::EntryId camera = registry_.AttachCamera(Camera("KV0001"));
    RunLoopTurns();
    EXPECT_EQ(Workspace().launches.size(), static_cast<std::size_t>(times));
    registry_.Detach(camera);
    RunLoopTurns();
  }
}

TEST_F(PVAppDelegateTest, FlagOutlivesTheDelegate) {
  FinishLaunching();
  [delegate_ release];
  delegate_ = nil;
  registry_.AttachCamera(Camera("KV0001"));
  RunLoopTurns();
  EXPECT_EQ(Workspace().launches.size(), 1U);
}

TEST_F(PVAppDelegateTest, CameraIsReleasedWhenTheCallbackReturns) {
  FinishLaunching();
  const std::size_t before = darwin::AccountForRegistry().references;
  registry_.AttachCamera(Camera("KV0001"));
  RunLoopTurns();
  EXPECT_EQ(Workspace().launches.size(), 1U);
  EXPECT_EQ(darwin::AccountForRegistry().references, before);
}

TEST_F(PVAppDelegateTest, RefusedRegistrationLeavesTheMethodAsAnError) {
  refuseRegistrations = true;
  EXPECT_THAT(TextOfErrorFrom([this] { FinishLaunching(); }),
              testing::StartsWith("OsxCameraError: IOServiceAddMatchingNotification() failed.\n"));
}

}  // namespace
