#include "darwin/registry/Registry.h"

#include <IOKit/IOMessage.h>

#include "darwin/registry/State.h"
#include "darwin/registry/testing/RegistryFixture.h"

namespace darwin {
namespace {

using RegistryEntries = RegistryFixture;

TEST_F(RegistryEntries, AnEntryIsNoServiceBeforeItIsRegistered) {
  const EntryId entry = TheRegistry().Add(TheRegistry().Root(), {{"Camera"}, {}, {}});
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
  TheRegistry().RegisterService(entry);
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 1u);
  TheRegistry().Terminate(entry);
}

TEST(RegistryPorts, BothNamesOfTheDefaultPortAreZero) {
  EXPECT_EQ(kIOMasterPortDefault, MACH_PORT_NULL);
  EXPECT_EQ(kIOMainPortDefault, MACH_PORT_NULL);
}

TEST_F(RegistryEntries, AnEntryIsRegisteredOnce) {
  const EntryId entry = Publish({{"Camera"}, {}, {}});
  TheRegistry().RegisterService(entry);
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 1u);
  TheRegistry().Terminate(entry);
}

TEST_F(RegistryEntries, WhatHasGoneIsForgottenByWhatItHungOn) {
  for (int i = 0; i < 100; ++i) TheRegistry().Terminate(Publish({{"Camera"}, {}, {}}));
  EXPECT_LE(TheRegistry().GetState().root->children.size(), 1u);
}

TEST_F(RegistryEntries, EveryClassOfTheChainMatches) {
  const EntryId entry = Publish({{"Camera", "Disk", "IOService"}, {}, {}});
  for (const char* name : {"Camera", "Disk", "IOService"}) {
    EXPECT_EQ(Count(IOServiceMatching(name)), 1u) << name;
  }
  TheRegistry().Terminate(entry);
}

TEST_F(RegistryEntries, NothingIsAddedBelowWhatHasGone) {
  const EntryId entry = Publish({{"Camera"}, {}, {}});
  TheRegistry().Terminate(entry);
  EXPECT_EQ(TheRegistry().Add(entry, {{"Child"}, {}, {}}), 0u);
  EXPECT_EQ(TheRegistry().Add(99999999, {{"Child"}, {}, {}}), 0u);
}

TEST_F(RegistryEntries, WhatIsNoEntryIsIgnored) {
  TheRegistry().RegisterService(0);
  TheRegistry().Terminate(0);
  TheRegistry().SendMessage(0, kIOMessageServiceIsSuspended);
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
}

TEST_F(RegistryEntries, TheRootStays) {
  TheRegistry().Terminate(TheRegistry().Root());
  const EntryId entry = Publish({{"Camera"}, {}, {}});
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 1u);
  TheRegistry().Terminate(entry);
}

TEST_F(RegistryEntries, ATerminationTakesAllThatIsBelow) {
  const EntryId top = TheRegistry().Add(TheRegistry().Root(), {{"Bus"}, {}, {}});
  for (int i = 0; i < 3; ++i) {
    const EntryId device = TheRegistry().Add(top, {{"Device"}, {}, {}});
    TheRegistry().RegisterService(TheRegistry().Add(device, {{"Camera"}, {}, {}}));
  }
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 3u);
  TheRegistry().Terminate(top);
  EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u);
}

TEST_F(RegistryEntries, ASecondTerminationTellsNobodyAgain) {
  const EntryId entry = Publish({{"Camera"}, {}, {}});
  const IONotificationPortRef port = IONotificationPortCreate(kIOMainPortDefault);
  CFRunLoopAddSource(CFRunLoopGetCurrent(), IONotificationPortGetRunLoopSource(port), kCFRunLoopDefaultMode);
  const io_service_t service = First("Camera");
  int told = 0;
  const auto count = [](void* number, io_service_t, uint32_t, void*) { ++*static_cast<int*>(number); };
  io_object_t watch = 0;
  IOServiceAddInterestNotification(port, service, kIOGeneralInterest, count, &told, &watch);
  TheRegistry().Terminate(entry);
  TheRegistry().Terminate(entry);
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  EXPECT_EQ(told, 1);
  IOObjectRelease(watch);
  IOObjectRelease(service);
  IONotificationPortDestroy(port);
}

}  // namespace
}  // namespace darwin
