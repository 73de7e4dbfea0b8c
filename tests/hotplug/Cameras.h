#ifndef KELVA_TESTS_HOTPLUG_CAMERAS_H_
#define KELVA_TESTS_HOTPLUG_CAMERAS_H_

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "darwin/cf/Accounting.h"
#include "darwin/registry/Accounting.h"
#include "darwin/virtual/VirtualRegistry.h"
#include "src/usb/osx/OsxCamera.h"
#include "vcam/camera/InProcess.h"
#include "vcam/camera/VirtualCamera.h"

namespace hotplug {

/// What this process holds of the frameworks' substitute.
struct Holdings {
  std::size_t handles = darwin::AccountForRegistry().handles;
  std::size_t references = darwin::AccountForRegistry().references;
  std::size_t entries = darwin::AccountForRegistry().entries;
  std::size_t objects = darwin::LiveCoreFoundationObjects();
  std::size_t descriptors = darwin::OpenDescriptors();
  bool operator==(const Holdings&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Holdings& held) {
  return out << held.handles << " handles, " << held.references << " references, " << held.entries << " entries, "
             << held.objects << " objects, " << held.descriptors << " descriptors";
}

/// The listener of the process: what it is told goes to the test that runs. Registered once, as a program does; the
/// registrations and the port live until the process ends.
class Listener {
 public:
  static Listener& Shared() {
    static Listener listener;
    return listener;
  }
  std::vector<boost::shared_ptr<Camera>> attached;
  int badCameras = 0;

 private:
  Listener() {
    Camera::ListenForCameraAttach(OnAttach, this, false);
    Camera::ListenForBadCameraAttach(OnBadCamera, this);
  }
  static void OnAttach(boost::shared_ptr<Camera> camera, void* self) {
    static_cast<Listener*>(self)->attached.push_back(camera);
  }
  static void OnBadCamera(void* self) { ++static_cast<Listener*>(self)->badCameras; }
};

/// A scratch storage folder, cameras that come and go, and the claim that nothing is left of them.
class Cameras : public testing::Test {
 protected:
  Cameras() {
    std::string name = testing::TempDir() + "kelva-hotplug-XXXXXX";
    storage_ = mkdtemp(name.data());
    RunPending();
    Listener::Shared().attached.clear();
    Listener::Shared().badCameras = 0;
    before_ = Holdings();
  }

  ~Cameras() override {
    while (!entries_.empty()) Unplug(entries_.begin()->first);
    device_.reset();
    Listener::Shared().attached.clear();
    RunPending();
    EXPECT_EQ(Holdings(), before_);
    std::filesystem::remove_all(storage_);
  }

  void Put(const std::string& path, const std::string& content) {
    std::filesystem::create_directories((storage_ / path).parent_path());
    std::ofstream(storage_ / path, std::ios::binary) << content;
  }

  std::shared_ptr<vcam::VirtualCamera> Plug(const std::string& serial, std::uint8_t type = 3,
                                            const std::string& revision = "1.00", const std::string& vendor = "Kelva") {
    vcam::Options options;
    options.serial = serial;
    options.storage = storage_;
    options.vendor = vendor;
    options.revision = revision;
    options.peripheralType = type;
    auto device = std::make_shared<vcam::VirtualCamera>(options);
    entries_[serial] = registry_.AttachCamera({serial, vendor, "Camera", revision, type, vcam::OpenInProcess(device)});
    RunPending();
    return device;
  }

  void Unplug(const std::string& serial) {
    registry_.Detach(entries_.at(serial));
    entries_.erase(serial);
    RunPending();
  }

  /// An open camera over a newly plugged device.
  boost::shared_ptr<Camera> PlugAndOpen(const std::string& serial) {
    device_ = Plug(serial);
    boost::shared_ptr<Camera> camera = Camera::GetCamera(serial.c_str(), "", false, false);
    EXPECT_TRUE(camera->Open());
    return camera;
  }

  static void RunPending() {
    Listener::Shared();
    while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true) == kCFRunLoopRunHandledSource) {
    }
  }

  std::filesystem::path storage_;
  std::shared_ptr<vcam::VirtualCamera> device_;

 private:
  darwin::VirtualRegistry registry_;
  std::map<std::string, darwin::EntryId> entries_;
  Holdings before_;
};

}  // namespace hotplug

#endif  // KELVA_TESTS_HOTPLUG_CAMERAS_H_
