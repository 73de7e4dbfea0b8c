// Ten thousand cameras that come and go: nothing may be left of any of them.

#include <IOKit/IOKitLib.h>
#include <IOKit/IOMessage.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "darwin/cf/Accounting.h"
#include "darwin/registry/Accounting.h"
#include "darwin/virtual/VirtualRegistry.h"

namespace darwin {
namespace {

class Accepting final : public UserClient {
 public:
  int CallScalar(std::uint32_t) override { return kIOReturnSuccess; }
  int CallStruct(std::uint32_t, const void*, std::size_t, void*, std::size_t* size) override {
    *size = 0;
    return kIOReturnSuccess;
  }
};

CameraDescription Description(int number) {
  return {
      "K" + std::to_string(number), "Kelva", "Glimmer", "1.00", 3, [](int&) { return std::make_unique<Accepting>(); }};
}

/// A program that listens for cameras and holds each one, open, until it goes.
class Program {
 public:
  Program() : port_(IONotificationPortCreate(kIOMainPortDefault)) {
    CFRunLoopAddSource(CFRunLoopGetCurrent(), IONotificationPortGetRunLoopSource(port_), kCFRunLoopDefaultMode);
    IOServiceAddMatchingNotification(port_, kIOFirstMatchNotification, IOServiceMatching("com_kelva_Glimmer"), OnMatch,
                                     this, &iterator_);
    OnMatch(this, iterator_);
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program() {
    IOObjectRelease(iterator_);
    IONotificationPortDestroy(port_);
  }

  int attached = 0;
  int lost = 0;

 private:
  struct Held {
    Program* program;
    io_service_t service;
    io_connect_t connection = 0;
    io_object_t watch = 0;
  };

  static void OnMatch(void* self, io_iterator_t iterator) {
    while (const io_service_t service = IOIteratorNext(iterator)) static_cast<Program*>(self)->Hold(service);
  }

  void Hold(io_service_t service) {
    ++attached;
    auto* held = new Held{this, service};
    EXPECT_EQ(IOServiceOpen(service, mach_task_self(), 0, &held->connection), kIOReturnSuccess);
    EXPECT_EQ(IOServiceAddInterestNotification(port_, service, kIOGeneralInterest, OnMessage, held, &held->watch),
              kIOReturnSuccess);
    EXPECT_EQ(IOConnectCallScalarMethod(held->connection, 0, nullptr, 0, nullptr, nullptr), kIOReturnSuccess);
  }

  static void OnMessage(void* context, io_service_t, uint32_t type, void*) {
    if (type != kIOMessageServiceIsTerminated) return;
    auto* held = static_cast<Held*>(context);
    ++held->program->lost;
    IOServiceClose(held->connection);
    IOObjectRelease(held->watch);
    IOObjectRelease(held->service);
    delete held;
  }

  const IONotificationPortRef port_;
  io_iterator_t iterator_ = 0;
};

void RunPending() {
  while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true) == kCFRunLoopRunHandledSource) {
  }
}

void ExpectNothingLeft(std::size_t objects, std::size_t descriptors) {
  const RegistryAccounting left = AccountForRegistry();
  EXPECT_EQ(left.handles, 0u);
  EXPECT_EQ(left.references, 0u);
  EXPECT_EQ(left.services, 0u);
  EXPECT_EQ(left.entries, 1u);
  EXPECT_EQ(left.ports, 0u);
  EXPECT_EQ(LiveCoreFoundationObjects(), objects);
  EXPECT_EQ(OpenDescriptors(), descriptors);
}

TEST(PlugCycles, TenThousandCamerasLeaveNothing) {
  constexpr int kCycles = 10'000;
  CFRunLoopGetCurrent();
  const std::size_t objects = LiveCoreFoundationObjects();
  const std::size_t descriptors = OpenDescriptors();
  {
    VirtualRegistry registry;
    Program program;
    for (int i = 0; i < kCycles; ++i) {
      const EntryId camera = registry.AttachCamera(Description(i));
      RunPending();
      registry.Detach(camera);
      RunPending();
    }
    EXPECT_EQ(program.attached, kCycles);
    EXPECT_EQ(program.lost, kCycles);
  }
  ExpectNothingLeft(objects, descriptors);
}

/// Searches, reads, opens, calls and closes, whatever happens to the cameras meanwhile.
void UseCameras(int rounds) {
  for (int i = 0; i < rounds; ++i) {
    io_iterator_t iterator = 0;
    ASSERT_EQ(IOServiceGetMatchingServices(kIOMainPortDefault, IOServiceMatching("com_kelva_Glimmer"), &iterator),
              kIOReturnSuccess);
    while (const io_service_t service = IOIteratorNext(iterator)) {
      io_connect_t connection = 0;
      if (IOServiceOpen(service, mach_task_self(), 0, &connection) == kIOReturnSuccess) {
        const kern_return_t result = IOConnectCallScalarMethod(connection, 0, nullptr, 0, nullptr, nullptr);
        EXPECT_TRUE(result == kIOReturnSuccess || result == MACH_SEND_INVALID_DEST) << std::hex << result;
        IOServiceClose(connection);
      }
      const CFTypeRef vendor =
          IORegistryEntryCreateCFProperty(service, CFSTR("Vendor Identification"), kCFAllocatorDefault, 0);
      if (vendor != nullptr) CFRelease(vendor);
      IOObjectRelease(service);
    }
    IOObjectRelease(iterator);
  }
}

TEST(PlugCycles, WorkersThatUseTheCamerasMeanwhileLeaveNothingEither) {
  CFRunLoopGetCurrent();
  const std::size_t objects = LiveCoreFoundationObjects();
  const std::size_t descriptors = OpenDescriptors();
  {
    VirtualRegistry registry;
    Program program;
    std::thread first(UseCameras, 500);
    std::thread second(UseCameras, 500);
    for (int i = 0; i < 500; ++i) {
      const EntryId camera = registry.AttachCamera(Description(i));
      RunPending();
      registry.Detach(camera);
      RunPending();
    }
    first.join();
    second.join();
    EXPECT_EQ(program.attached, 500);
    EXPECT_EQ(program.lost, 500);
  }
  ExpectNothingLeft(objects, descriptors);
}

TEST(PlugCycles, WhatIsStillPluggedInGoesWithTheRegistryThatPluggedIt) {
  {
    VirtualRegistry registry;
    registry.AttachCamera(Description(1));
    registry.AttachCamera(Description(2));
    EXPECT_EQ(AccountForRegistry().services, 2u);
  }
  EXPECT_EQ(AccountForRegistry().services, 0u);
}

}  // namespace
}  // namespace darwin
