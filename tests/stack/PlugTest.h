#ifndef KELVA_TESTS_STACK_PLUG_TEST_H_
#define KELVA_TESTS_STACK_PLUG_TEST_H_

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include <chrono>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "src/wifi/Camera.h"
#include "tests/stack/Door.h"
#include "vcam/camera/testing/TestSupport.h"

namespace tests::stack {

/// Any number of cameras over one storage folder; those that a test leaves plugged in are pulled out after it.
class PlugTest : public testing::Test {
 protected:
  ~PlugTest() override {
    for (const std::string& serial : plugged_) Door::Get().Unplug(serial);
    Settle();
  }

  vcam::Options CameraOptions(const std::string& serial) const { return storage_.CameraOptions(serial); }

  void Plug(const vcam::Options& options) {
    plugged_.insert(options.serial);
    Door::Get().Plug(options);
    Settle();
  }
  void Plug(const std::string& serial) { Plug(CameraOptions(serial)); }

  void Unplug(const std::string& serial) {
    plugged_.erase(serial);
    Door::Get().Unplug(serial);
    Settle();
  }

  boost::shared_ptr<Camera> PlugAndOpen(const std::string& serial = "K100") {
    Plug(serial);
    auto camera = Camera::GetCamera(serial.c_str(), "", false, false);
    EXPECT_TRUE(camera && camera->Open());
    return camera;
  }

  /// The cameras of this maker that are plugged in.
  static std::vector<boost::shared_ptr<Camera>> Enumerate() { return Camera::EnumerateCameras(false, "", false, 0); }

  /// Runs the run loop until the condition holds; false when it does not in good time.
  static bool PumpUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
      if (std::chrono::steady_clock::now() > end) return false;
      CFRunLoopRunInMode(kCFRunLoopDefaultMode, kTurn, true);
    }
    return true;
  }

  /// Runs the run loop until nothing more is told.
  static void Settle() {
    while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, kTurn, true) == kCFRunLoopRunHandledSource) {
    }
  }

  /// The "ret=... result.status=..." line of the error that a call ends with; empty when it ends well.
  static std::string FailureOf(const std::function<void()>& call) {
    try {
      call();
    } catch (const CameraTransferError& error) {
      const std::string text = error.what();
      return text.substr(text.rfind('\n') + 1);
    }
    return "";
  }

  static constexpr double kTurn = 0.02;
  vcam::test::ScratchStorage storage_;
  std::set<std::string> plugged_;
};

}  // namespace tests::stack

#endif  // KELVA_TESTS_STACK_PLUG_TEST_H_
