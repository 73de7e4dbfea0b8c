#include "vcam/camera/InProcess.h"

#include <IOKit/IOReturn.h>
#include <gmock/gmock.h>

#include <array>
#include <thread>

#include "vcam/camera/testing/TestSupport.h"
#include "wire/UserClientRecords.h"

namespace vcam {
namespace {

class InProcessTest : public testing::Test {
 protected:
  std::unique_ptr<darwin::UserClient> Open() {
    int error = -1;
    auto client = OpenInProcess(camera_)(error);
    EXPECT_EQ(error, kIOReturnSuccess);
    return client;
  }

  /// Asks whether the camera is ready.
  int AskReady(darwin::UserClient& client, std::uint32_t timeoutSeconds = 100) {
    wire::UserClientTransferRequest request{};
    request.direction = 2;
    request.cdbLength = 16;
    request.cdb[0] = 0xC6;
    request.cdb[2] = 0x04;
    request.length = 4;
    request.timeout = timeoutSeconds;
    request.bufferAddress = reinterpret_cast<std::uintptr_t>(answer_.data());
    std::size_t size = sizeof result_;
    return client.CallStruct(2, &request, sizeof request, &result_, &size);
  }

  test::ScratchStorage scratch_;
  std::shared_ptr<VirtualCamera> camera_ = std::make_shared<VirtualCamera>(scratch_.CameraOptions());
  std::array<std::uint8_t, 4> answer_{};
  wire::UserClientTransferResult result_{};
};

TEST_F(InProcessTest, CarriesACommandToTheCamera) {
  const auto client = Open();
  ASSERT_EQ(client->CallScalar(0), kIOReturnSuccess);
  EXPECT_EQ(AskReady(*client), kIOReturnSuccess);
  EXPECT_EQ(result_.actualLength, 4);
  EXPECT_EQ(answer_, (std::array<std::uint8_t, 4>{1, 0, 0, 0}));
}

TEST_F(InProcessTest, GivesTheSessionToOneAtATime) {
  const auto first = Open();
  auto second = Open();
  ASSERT_EQ(first->CallScalar(0), kIOReturnSuccess);
  EXPECT_EQ(second->CallScalar(0), kIOReturnExclusiveAccess);
  second.reset();
  EXPECT_EQ(AskReady(*first), kIOReturnSuccess) << "the refused one ended nobody's session";
  EXPECT_EQ(first->CallScalar(1), kIOReturnSuccess);
  EXPECT_EQ(Open()->CallScalar(0), kIOReturnSuccess);
}

TEST_F(InProcessTest, HasNoDeviceOnceItIsUnplugged) {
  const auto client = Open();
  ASSERT_EQ(client->CallScalar(0), kIOReturnSuccess);
  camera_->Unplug();
  EXPECT_EQ(AskReady(*client), kIOReturnNoDevice);
  EXPECT_EQ(Open()->CallScalar(0), kIOReturnNoDevice);
}

TEST_F(InProcessTest, TimesOutOnACameraThatHangs) {
  const auto client = Open();
  ASSERT_EQ(client->CallScalar(0), kIOReturnSuccess);
  camera_->Arm({FaultKind::kHang});
  EXPECT_EQ(AskReady(*client, 0), kIOReturnTimeout);
  EXPECT_EQ(AskReady(*client), kIOReturnSuccess) << "the next one is answered";
}

TEST_F(InProcessTest, StopsWaitingWhenTheCameraIsUnplugged) {
  const auto client = Open();
  ASSERT_EQ(client->CallScalar(0), kIOReturnSuccess);
  camera_->Arm({FaultKind::kHang});
  std::thread unplugger([this] { camera_->Unplug(); });
  EXPECT_EQ(AskReady(*client), kIOReturnNoDevice);
  unplugger.join();
}

TEST_F(InProcessTest, TimesOutOnACommandThatTakesTooLong) {
  const auto client = Open();
  ASSERT_EQ(client->CallScalar(0), kIOReturnSuccess);
  camera_->Arm({FaultKind::kSlow, 1});
  EXPECT_EQ(AskReady(*client, 0), kIOReturnTimeout);
  EXPECT_EQ(AskReady(*client, 100), kIOReturnSuccess);
}

}  // namespace
}  // namespace vcam
