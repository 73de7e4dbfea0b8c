#include "apps/camera/Hotplug.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

#include "darwin/virtual/VirtualRegistry.h"

namespace {

std::function<void()> beforeRun;

}  // namespace

// The linker puts this in the place of the run loop's function.
extern "C" CFRunLoopRunResult __real_CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds, Boolean once);
extern "C" CFRunLoopRunResult __wrap_CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds, Boolean once) {
  if (beforeRun) beforeRun();
  return __real_CFRunLoopRunInMode(mode, seconds, once);
}

namespace apps {
namespace {

/// A watch that lives until the program ends, because a listener is never taken back.
Hotplug& Watch(Hotplug::Handler handler) {
  static std::deque<Hotplug> watches;
  return watches.emplace_back(std::move(handler));
}

TEST(HotplugTest, CamerasThatAreThereAreReportedUntilTheHandlerHasSeenEnough) {
  darwin::VirtualRegistry registry;
  registry.AttachCamera({"K1", "Kelva", "Camera", "1.00", 3, {}});
  std::string seen;
  Hotplug* running = nullptr;
  Hotplug& hotplug = Watch([&](const HotplugEvent& event) {
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
  Hotplug& hotplug = Watch([](const HotplugEvent&) { throw std::runtime_error("full"); });
  EXPECT_THROW(hotplug.Run(Stop()), std::runtime_error);
}

TEST(HotplugTest, AnErrandRunsOnceInEachPauseWhateverWakesTheLoop) {
  darwin::VirtualRegistry registry;
  registry.AttachCamera({"K1", "Kelva", "Camera", "1.00", 3, {}});
  Hotplug& hotplug = Watch([](const HotplugEvent&) {});
  Stop stop;
  std::map<std::string, int> errands;
  hotplug.Repeat(std::chrono::hours(1), [&](const RegistryCamera& facts, const boost::shared_ptr<Camera>&) {
    return [&errands, serial = facts.serial] { ++errands[serial]; };
  });
  int runs = 0;
  beforeRun = [&] {
    if (++runs == 3) stop.Request();
    registry.AttachCamera({"L" + std::to_string(runs), "Kelva", "Camera", "1.00", 3, {}});
  };
  EXPECT_THROW(hotplug.Run(stop), Stopped);
  beforeRun = {};
  EXPECT_EQ(errands, (std::map<std::string, int>{{"K1", 1}, {"L1", 1}, {"L2", 1}}));
}

TEST(HotplugTest, ALookFollowsTheCamerasThatAreThereAndThenEachPause) {
  darwin::VirtualRegistry registry;
  registry.AttachCamera({"K1", "Kelva", "Camera", "1.00", 3, {}});
  static std::string seen;
  Hotplug& hotplug = Watch([](const HotplugEvent& event) { seen += event.facts.serial + " "; });
  Stop stop;
  hotplug.Every(std::chrono::hours(1), [] { seen += "look "; });
  int runs = 0;
  beforeRun = [&] {
    if (++runs == 3) stop.Request();
    registry.AttachCamera({"L" + std::to_string(runs), "Kelva", "Camera", "1.00", 3, {}});
  };
  EXPECT_THROW(hotplug.Run(stop), Stopped);
  beforeRun = {};
  EXPECT_EQ(seen.substr(0, 14), "K1 look L1 L2 ");
}

TEST(HotplugTest, ARequestJustBeforeTheLoopRunsEndsTheWatch) {
  darwin::VirtualRegistry registry;
  Hotplug& hotplug = Watch([](const HotplugEvent&) {});
  // News of the other tests' cameras would end the first run too.
  while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true) == kCFRunLoopRunHandledSource) {
  }
  Stop stop;
  beforeRun = [&stop] { stop.Request(); };
  EXPECT_THROW(hotplug.Run(stop), Stopped);
  beforeRun = {};
}

TEST(HotplugTest, ARequestToStopEndsTheWatch) {
  darwin::VirtualRegistry registry;
  Hotplug& hotplug = Watch([](const HotplugEvent&) {});
  Stop stop;
  stop.Request();
  EXPECT_THROW(hotplug.Run(stop), Stopped);
}

}  // namespace
}  // namespace apps
