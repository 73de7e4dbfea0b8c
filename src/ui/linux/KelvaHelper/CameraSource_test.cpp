#include "src/ui/linux/KelvaHelper/CameraSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

#include "base/FileDescriptor.h"
#include "base/testing/ScratchFolder.h"
#include "bus/BusConnection.h"
#include "src/usb/osx/OsxCamera.h"
#include "vcam/server/BusServer.h"

namespace helper {
namespace {

/// A served bus with one camera.
class Bus {
 public:
  explicit Bus(const std::filesystem::path& folder) : path_(folder / "bus"), server_(path_) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    stop_ = base::FileDescriptor(ends[0]);
    hold_ = base::FileDescriptor(ends[1]);
    thread_ = std::thread([this] { server_.Run(stop_.Get()); });
    bus::PlugRequest camera;
    camera.serial = "KV0001";
    camera.storage = folder;
    camera.peripheralType = 3;
    bus::BusConnection(path_).Request(bus::Kind::kPlug, Encode(camera));
  }
  ~Bus() {
    hold_ = base::FileDescriptor();
    thread_.join();
  }

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
  vcam::server::BusServer server_;
  base::FileDescriptor stop_;
  base::FileDescriptor hold_;
  std::thread thread_;
};

TEST(CameraSource, PathOfABusGivesTheCamerasOfThatBus) {
  const base::ScratchFolder folder;
  const Bus bus(folder.Path());
  UseCamerasOf(bus.Path());
  const auto cameras = OsxCamera::EnumerateOsxCameras(false);
  ASSERT_EQ(cameras.size(), 1U);
  EXPECT_TRUE(cameras[0]->CompareSn("KV0001"));
}

TEST(CameraSource, BusThatNobodyServesIsAnErrorThatNamesItAndNoFallback) {
  try {
    UseCamerasOf("/nonexistent/bus");
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("/nonexistent/bus"));
  }
}

TEST(CameraSource, WithoutAPathTheMachineIsChosen) {
  EXPECT_NO_THROW(UseCamerasOf(""));
}

}  // namespace
}  // namespace helper
