// Cameras that come and go in one process, a tenth of them in the middle of a transfer. The fixture claims that nothing
// is left of them: no handle, no reference, no object, no descriptor.

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "darwin/cf/Accounting.h"
#include "darwin/registry/Accounting.h"
#include "darwin/virtual/VirtualRegistry.h"
#include "src/wifi/Camera.h"
#include "vcam/camera/InProcess.h"
#include "vcam/camera/VirtualCamera.h"
#include "vcam/camera/testing/TestSupport.h"

namespace tests::stack {
namespace {

/// What this process holds of the frameworks' substitute.
struct Holdings {
  std::size_t handles = darwin::AccountForRegistry().handles;
  std::size_t references = darwin::AccountForRegistry().references;
  std::size_t entries = darwin::AccountForRegistry().entries;
  std::size_t objects = darwin::LiveCoreFoundationObjects();
  std::size_t descriptors = darwin::OpenDescriptors();
  bool operator==(const Holdings&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Holdings& held) {
  return out << held.handles << " handles, " << held.references << " references, " << held.entries << " entries, "
             << held.objects << " objects, " << held.descriptors << " descriptors";
}

/// The cameras that the listener of the process was told of. Registered once, as a program does; the registration and
/// the port live until the process ends.
std::vector<boost::shared_ptr<Camera>>& Attached() {
  static std::vector<boost::shared_ptr<Camera>> attached;
  static const bool listening =
      (Camera::ListenForCameraAttach([](boost::shared_ptr<Camera> camera, void*) { attached.push_back(camera); },
                                     nullptr, false),
       true);
  EXPECT_TRUE(listening);
  return attached;
}

class PlugCycles : public testing::Test {
 protected:
  PlugCycles() {
    Attached();
    RunPending();
    before_ = std::make_unique<Holdings>();
  }

  ~PlugCycles() override {
    while (!entries_.empty()) Unplug(entries_.begin()->first);
    Attached().clear();
    RunPending();
    EXPECT_EQ(Holdings(), *before_);
  }

  std::shared_ptr<vcam::VirtualCamera> Plug(const std::string& serial, const std::string& vendor = "Kelva") {
    vcam::Options options = storage_.CameraOptions(serial);
    options.vendor = vendor;
    auto device = std::make_shared<vcam::VirtualCamera>(options);
    entries_[serial] = registry_.AttachCamera({serial, vendor, "Camera", "1.00", 3, vcam::OpenInProcess(device)});
    RunPending();
    return device;
  }

  void Unplug(const std::string& serial) {
    registry_.Detach(entries_.at(serial));
    entries_.erase(serial);
    RunPending();
  }

  static void RunPending() {
    while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true) == kCFRunLoopRunHandledSource) {
    }
  }

  vcam::test::ScratchStorage storage_;

 private:
  darwin::VirtualRegistry registry_;
  std::map<std::string, darwin::EntryId> entries_;
  std::unique_ptr<const Holdings> before_;
};

TEST_F(PlugCycles, TenThousandLeaveNothing) {
  constexpr int kCycles = 10000;
  constexpr int kInMidTransferEvery = 10;
  storage_.Put("A.BIN", std::string(100000, 'a'));
  int attached = 0;
  int lost = 0;
  int cut = 0;
  for (int cycle = 0; cycle < kCycles; ++cycle) {
    const auto device = Plug("one");
    attached += static_cast<int>(Attached().size());
    const boost::shared_ptr<Camera> camera = Attached().at(0);
    Attached().clear();
    camera->ListenForCameraLost([](void* count) { ++*static_cast<int*>(count); }, &lost);
    ASSERT_TRUE(camera->Open());
    if (cycle % kInMidTransferEvery == 0) {
      device->Arm({vcam::FaultKind::kUnplugAtByte, 70000});
      try {
        camera->ReadFile("I:\\A.BIN", nullptr, nullptr, true);
      } catch (const CameraTransferError&) {
        ++cut;
      }
    }
    Unplug("one");
    EXPECT_TRUE(camera->WasDisconnected());
  }
  EXPECT_EQ(attached, kCycles);
  EXPECT_EQ(lost, kCycles);
  EXPECT_EQ(cut, kCycles / kInMidTransferEvery);
}

TEST_F(PlugCycles, AListOfCamerasLeavesNothing) {
  Plug("one");
  Plug("other", "Others");
  EXPECT_EQ(Camera::EnumerateCameras(false, "", false, 0).size(), 1u);
  EXPECT_EQ(Camera::EnumerateCameras(true, "", false, 0).size(), 2u);
}

}  // namespace
}  // namespace tests::stack
