#include "apps/camera/Hotplug.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "darwin/virtual/VirtualRegistry.h"

namespace apps {
namespace {

TEST(HotplugTest, CamerasThatAreThereAreReportedUntilTheHandlerHasSeenEnough) {
  darwin::VirtualRegistry registry;
  registry.AttachCamera({"K1", "Kelva", "Camera", "1.00", 3, {}});
  std::string seen;
  Hotplug* running = nullptr;
  Hotplug hotplug([&](const HotplugEvent& event) {
    EXPECT_TRUE(event.present);
    seen += event.facts.serial;
    running->Finish();
  });
  running = &hotplug;
  hotplug.Run(Stop());
  EXPECT_EQ(seen, "K1");
}

TEST(HotplugTest, AFailureOfTheHandlerEndsTheWatch) {
  darwin::VirtualRegistry registry;
  registry.AttachCamera({"K1", "Kelva", "Camera", "1.00", 3, {}});
  Hotplug hotplug([](const HotplugEvent&) { throw std::runtime_error("full"); });
  EXPECT_THROW(hotplug.Run(Stop()), std::runtime_error);
}

TEST(HotplugTest, ARequestToStopEndsTheWatch) {
  darwin::VirtualRegistry registry;
  Hotplug hotplug([](const HotplugEvent&) {});
  Stop stop;
  stop.Request();
  EXPECT_THROW(hotplug.Run(stop), Stopped);
}

}  // namespace
}  // namespace apps
