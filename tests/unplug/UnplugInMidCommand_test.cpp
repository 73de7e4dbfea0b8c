// Cameras that go while another thread is inside of a command, and are dropped inside of their own lost callback.

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <future>
#include <memory>
#include <string>
#include <thread>

#include "darwin/cf/Accounting.h"
#include "darwin/registry/Accounting.h"
#include "darwin/virtual/VirtualRegistry.h"
#include "src/wifi/Camera.h"
#include "src/wifi/CameraError.h"
#include "wire/UserClientRecords.h"

namespace tests::unplug {
namespace {

/// Where a command stands still until the test has done what it wants in its midst.
struct Gate {
  std::promise<void> entered;
  std::promise<void> leave;
};

/// The driver's end of a camera that answers every question with 1, or of one that goes in the middle of it.
class Driver final : public darwin::UserClient {
 public:
  explicit Driver(std::shared_ptr<Gate> gate) : gate_(std::move(gate)) {}

  int CallScalar(std::uint32_t) override { return kIOReturnSuccess; }

  int CallStruct(std::uint32_t, const void* in, std::size_t, void* out, std::size_t* outSize) override {
    if (gate_ != nullptr) {
      gate_->entered.set_value();
      gate_->leave.get_future().wait();
      return kIOReturnNoDevice;
    }
    wire::UserClientTransferRequest request;
    std::memcpy(&request, in, sizeof request);
    auto* buffer = reinterpret_cast<char*>(static_cast<std::uintptr_t>(request.bufferAddress));
    std::fill_n(buffer, request.length, '\1');
    const wire::UserClientTransferResult result{0, request.length};
    std::memcpy(out, &result, sizeof result);
    *outSize = sizeof result;
    return kIOReturnSuccess;
  }

 private:
  const std::shared_ptr<Gate> gate_;
};

darwin::CameraDescription Description(std::shared_ptr<Gate> gate = nullptr) {
  return {"K1", "Kelva", "Glimmer", "1.00", 0, [gate](int&) { return std::make_unique<Driver>(gate); }};
}

/// An application: it opens each camera that comes, keeps it, and drops it inside of the lost callback.
struct Application {
  boost::shared_ptr<Camera> camera = {};
  int attached = 0;
  int lost = 0;

  static void OnAttach(boost::shared_ptr<Camera> camera, void* context) {
    auto& self = *static_cast<Application*>(context);
    ++self.attached;
    EXPECT_TRUE(camera->Open());
    camera->ListenForCameraLost(OnLost, context);
    self.camera = std::move(camera);
  }

  static void OnLost(void* context) {
    auto& self = *static_cast<Application*>(context);
    ++self.lost;
    self.camera.reset();
  }
};

/// What this process holds.
struct Holdings {
  std::size_t handles = darwin::AccountForRegistry().handles;
  std::size_t references = darwin::AccountForRegistry().references;
  std::size_t entries = darwin::AccountForRegistry().entries;
  std::size_t objects = darwin::LiveCoreFoundationObjects();
  std::size_t descriptors = darwin::OpenDescriptors();
  bool operator==(const Holdings&) const = default;
};

void RunPending() {
  while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true) == kCFRunLoopRunHandledSource) {
  }
}

/// One listening for the whole process, because a registration is never taken back.
Application& Listening() {
  static Application application;
  static const bool listening = [] {
    Camera::ListenForCameraAttach(Application::OnAttach, &application, false);
    return true;
  }();
  application.attached = application.lost = listening ? 0 : -1;
  return application;
}

TEST(Unplug, CamerasDroppedInsideOfTheirLostCallbackLeaveNothing) {
  constexpr int kCycles = 1'000;
  Application& application = Listening();
  const Holdings before;
  {
    darwin::VirtualRegistry registry;
    for (int i = 0; i < kCycles; ++i) {
      const darwin::EntryId camera = registry.AttachCamera(Description());
      RunPending();
      ASSERT_TRUE(application.camera);
      ASSERT_TRUE(application.camera->IsReady());
      registry.Detach(camera);
      RunPending();
      ASSERT_FALSE(application.camera);
    }
  }
  EXPECT_EQ(application.attached, kCycles);
  EXPECT_EQ(application.lost, kCycles);
  EXPECT_TRUE(Holdings() == before);
}

/// Unplugs a camera while another thread is inside of a command on it. True when that command failed as it should.
bool UnplugInMidCommand(darwin::VirtualRegistry& registry, Application& application) {
  const auto gate = std::make_shared<Gate>();
  const darwin::EntryId entry = registry.AttachCamera(Description(gate));
  RunPending();
  bool failed = false;
  std::thread worker([camera = application.camera, &failed] {
    try {
      camera->IsReady();
    } catch (const CameraTransferError& error) {
      failed = std::string(error.what()).find("ret=0xe00002c0") != std::string::npos;
    }
  });
  gate->entered.get_future().wait();
  registry.Detach(entry);
  RunPending();
  gate->leave.set_value();
  worker.join();
  return failed && !application.camera;
}

TEST(Unplug, AThousandInTheMidstOfAnotherThreadsCommandLeaveNothing) {
  constexpr int kCycles = 1'000;
  Application& application = Listening();
  const Holdings before;
  {
    darwin::VirtualRegistry registry;
    for (int i = 0; i < kCycles; ++i) {
      ASSERT_TRUE(UnplugInMidCommand(registry, application)) << i;
    }
  }
  EXPECT_EQ(application.lost, kCycles);
  EXPECT_TRUE(Holdings() == before);
}

}  // namespace
}  // namespace tests::unplug
