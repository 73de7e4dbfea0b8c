// What happens, and in which order, when a camera goes.

#include <IOKit/IOMessage.h>

#include "darwin/conformance/RegistryTest.h"

namespace conformance {
namespace {

using ::testing::IsEmpty;

using Termination = RegistryTest;
using TerminationOfACamera = RegistryTest;

TEST_F(Termination, TheHeldHandleIsDeadAndIsGivenBackAsAnyOther) {
  const int camera = Plug();
  Object service = FindCamera();
  Unplug(camera);
  io_registry_entry_t parent = kUntouched;
  io_connect_t connection = kUntouched;
  EXPECT_EQ(IORegistryEntryGetParentEntry(service.Number(), kIOServicePlane, &parent), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(IOServiceOpen(service.Number(), mach_task_self(), 0, &connection), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(IORegistryEntryCreateCFProperty(service.Number(), CFSTR("IOClass"), kCFAllocatorDefault, 0), nullptr);
  EXPECT_EQ(parent, kUntouched);
  EXPECT_EQ(connection, kUntouched);
  EXPECT_EQ(IOObjectRelease(service.Take()), KERN_SUCCESS);
}

TEST_F(Termination, ADeadHandlesNumberIsNotGivenToAnotherObject) {
  const int camera = Plug({.serial = "K1"});
  const Object dead = FindCamera();
  Unplug(camera);
  for (int i = 0; i < 100; ++i) {
    const int next = Plug({.serial = "K2"});
    const Object service = FindCamera();
    ASSERT_NE(service.Number(), dead.Number());
    Unplug(next);
  }
}

TEST_F(TerminationOfACamera, TheParentsGoToo) {
  const int camera = Plug();
  const Object service = FindCamera();
  const Object inquiry = ParentOf(service);
  Unplug(camera);
  EXPECT_EQ(IORegistryEntryCreateCFProperty(inquiry.Number(), CFSTR("Vendor Identification"), kCFAllocatorDefault, 0),
            nullptr);
}

TEST_F(TerminationOfACamera, AnotherCameraIsUntouched) {
  const int first = Plug({.serial = "K1"});
  Plug({.serial = "K2", .peripheralType = 0});
  const Object other = FindOne(IOServiceMatching(kDiskDriver));
  io_connect_t connection = 0;
  ASSERT_EQ(IOServiceOpen(other.Number(), mach_task_self(), 0, &connection), kIOReturnSuccess);
  Unplug(first);
  EXPECT_EQ(IOConnectCallScalarMethod(connection, kAccept, nullptr, 0, nullptr, nullptr), kIOReturnSuccess);
  EXPECT_EQ(SerialOf(other), "K2");
  IOServiceClose(connection);
}

/// What is true of a camera's handles at the moment its end is told.
struct Scene {
  io_connect_t connection = 0;
  int calls = 0;
  std::size_t found = 99;
  kern_return_t callResult = kIOReturnSuccess;
  kern_return_t closeResult = kIOReturnSuccess;

  static void OnMessage(void* self, io_service_t, std::uint32_t type, void*) {
    auto& scene = *static_cast<Scene*>(self);
    if (type != kIOMessageServiceIsTerminated) return;
    ++scene.calls;
    scene.found = Find(MatchingCameras()).size();
    scene.callResult = IOConnectCallScalarMethod(scene.connection, kAccept, nullptr, 0, nullptr, nullptr);
    scene.closeResult = IOServiceClose(scene.connection);
  }
};

TEST_F(TerminationOfACamera, ConnectionsAndMatchesEndBeforeTheMessage) {
  const Port port;
  const int camera = Plug();
  const Object service = FindCamera();
  Scene scene;
  ASSERT_EQ(IOServiceOpen(service.Number(), mach_task_self(), 0, &scene.connection), kIOReturnSuccess);
  io_object_t number = 0;
  ASSERT_EQ(IOServiceAddInterestNotification(port.Get(), service.Number(), kIOGeneralInterest, Scene::OnMessage, &scene,
                                             &number),
            kIOReturnSuccess);
  const Object watch(number);
  Unplug(camera);
  EXPECT_EQ(IOConnectCallScalarMethod(scene.connection, kAccept, nullptr, 0, nullptr, nullptr), MACH_SEND_INVALID_DEST);
  RunPending();
  EXPECT_EQ(scene.calls, 1);
  EXPECT_EQ(scene.found, 0u);
  EXPECT_EQ(scene.callResult, MACH_SEND_INVALID_DEST);
  EXPECT_EQ(scene.closeResult, MACH_SEND_INVALID_DEST);
}

TEST_F(Termination, AServiceFromAnOldSearchCanBeReadButNotOpened) {
  const int camera = Plug({.serial = "K3"});
  io_iterator_t number = 0;
  ASSERT_EQ(IOServiceGetMatchingServices(MACH_PORT_NULL, MatchingCameras(), &number), kIOReturnSuccess);
  const Object iterator(number);
  Unplug(camera);
  const Object service = NextOf(iterator);
  io_connect_t connection = kUntouched;
  EXPECT_EQ(SerialOf(service), "K3");
  EXPECT_NE(IOServiceOpen(service.Number(), mach_task_self(), 0, &connection), kIOReturnSuccess);
  EXPECT_EQ(connection, 0u);
}

}  // namespace
}  // namespace conformance
