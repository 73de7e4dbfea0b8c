#ifndef KELVA_TESTS_STACK_STACK_TEST_H_
#define KELVA_TESTS_STACK_STACK_TEST_H_

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "darwin/registry/Accounting.h"
#include "src/usb/osx/OsxCamera.h"
#include "src/wifi/Camera.h"
#include "tests/stack/Door.h"
#include "vcam/camera/testing/TestSupport.h"

namespace tests::stack {

/// One camera, found and opened as an application does, with a storage folder to look into. After each test nothing of the
/// registry may be left in this process's hands.
class StackTest : public testing::Test {
 protected:
  void SetUp() override {
    before_ = darwin::AccountForRegistry();
    Door::Get().Plug(storage_.CameraOptions(kSerial));
    plugged_ = true;
  }

  void TearDown() override {
    camera_.reset();
    if (plugged_) Unplug();
    EXPECT_TRUE(Camera::EnumerateCameras(false, "", false, 0).empty());
    const darwin::RegistryAccounting after = darwin::AccountForRegistry();
    EXPECT_EQ(after.handles, before_.handles);
    EXPECT_EQ(after.references, before_.references);
  }

  Camera& Opened() {
    if (!camera_) {
      camera_ = Camera::GetCamera(kSerial, "", false, false);
      EXPECT_TRUE(camera_->Open());
    }
    return *camera_;
  }

  void Unplug() {
    plugged_ = false;
    Door::Get().Unplug(kSerial);
  }

  /// For tests in which a fault unplugs the camera.
  void HasUnpluggedItself() {
    plugged_ = false;
    camera_.reset();
    Door::Get().HasUnpluggedItself(kSerial);
  }

  void Arm(vcam::FaultKind kind, std::uint64_t at = 1) { Door::Get().Arm(kSerial, {kind, at}); }

  static std::string AsText(const std::vector<char>& bytes) { return {bytes.begin(), bytes.end()}; }

  static constexpr const char* kSerial = "K100";
  vcam::test::ScratchStorage storage_;
  boost::shared_ptr<Camera> camera_;
  darwin::RegistryAccounting before_{};
  bool plugged_ = false;
};

}  // namespace tests::stack

#endif  // KELVA_TESTS_STACK_STACK_TEST_H_
