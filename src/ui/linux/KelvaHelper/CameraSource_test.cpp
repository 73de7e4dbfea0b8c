#include "CameraSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

#include "FileDescriptor.h"
#include "OsxCamera.h"
#include "vcam/bus/BusServer.h"
#include "vcam/client/BusConnection.h"

namespace helper {
namespace {

/// A served bus with one camera.
class Bus {
 public:
  explicit Bus(const std::filesystem::path& folder) : path_(folder / "bus"), server_(path_) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    stop_ = FileDescriptor(ends[0]);
    hold_ = FileDescriptor(ends[1]);
    thread_ = std::thread([this] { server_.Run(stop_.Get()); });
    vcam::bus::PlugRequest camera;
    camera.serial = "KV0001";
    camera.storage = folder;
    camera.peripheralType = 3;
    vcam::client::BusConnection(path_).Request(vcam::bus::Kind::kPlug, Encode(camera));
  }
  ~Bus() {
    hold_ = FileDescriptor();
    thread_.join();
  }

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
  vcam::bus::BusServer server_;
  FileDescriptor stop_;
  FileDescriptor hold_;
  std::thread thread_;
};

TEST(CameraSource, PathOfABusGivesTheCamerasOfThatBus) {
  char name[] = "/tmp/kelva-source-test-XXXXXX";
  const std::filesystem::path folder = ::mkdtemp(name);
  {
    const Bus bus(folder);
    UseCamerasOf(bus.Path());
    const auto cameras = OsxCamera::EnumerateOsxCameras(false);
    ASSERT_EQ(cameras.size(), 1U);
    EXPECT_TRUE(cameras[0]->CompareSn("KV0001"));
  }
  std::filesystem::remove_all(folder);
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
