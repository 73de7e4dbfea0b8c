#include "vcam/usbip/CameraModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace vcam::usbip {
namespace {

using ::testing::SizeIs;

class CameraModelTest : public ::testing::Test {
 protected:
  CameraModelTest() { std::filesystem::create_directories(folder_); }
  ~CameraModelTest() override { std::filesystem::remove_all(folder_); }
  Options CameraOptions() {
    Options options;
    options.serial = "A7";
    options.storage = folder_;
    options.revision = "2.17";
    return options;
  }

  const std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("kelva-usb-door-" + std::to_string(::getpid()));
};

TEST_F(CameraModelTest, CommandsReachTheCameraAndCountAsItsOwn) {
  VirtualCamera camera(CameraOptions());
  CableFaults faults;
  const CameraModel model = ModelOf(camera, faults, Speed::kSuper);
  EXPECT_EQ(model.identity.serial, "A7");
  EXPECT_EQ(std::string(model.inquiry.begin() + 32, model.inquiry.end()), "2.17");
  wire::Command ready;
  ready.cdb[0] = 0xC6;
  ready.cdb[2] = 0x04;
  ready.direction = wire::Direction::kFromCamera;
  ready.length = 4;
  EXPECT_THAT(model.execute(ready).data, SizeIs(4));
  camera.Unplug();
  EXPECT_EQ(model.execute(ready).transport, wire::Transport::kGone);
}

TEST_F(CameraModelTest, FaultsOfTheCableAreAskedForOncePerCommand) {
  VirtualCamera camera(CameraOptions());
  CableFaults faults;
  const CameraModel model = ModelOf(camera, faults, Speed::kHigh);
  faults.Arm(CableFault::kPhaseError, 1);
  EXPECT_EQ(model.faults(), CableFault::kPhaseError);
  EXPECT_EQ(model.faults(), CableFault::kNone);
}

TEST(OfferOf, IsTheOneDeviceWithItsSpeed) {
  EXPECT_EQ(OfferOf(Speed::kSuper).busId, "1-1");
  EXPECT_EQ(OfferOf(Speed::kSuper).speed, Speed::kSuper);
}

}  // namespace
}  // namespace vcam::usbip
