#include "apps/doctor/macos/Probe.h"

#include <gtest/gtest.h>

#include <memory>

#include "darwin/registry/Accounting.h"
#include "darwin/virtual/VirtualRegistry.h"
#include "vcam/camera/InProcess.h"
#include "vcam/camera/testing/TestSupport.h"

namespace apps::doctor::macos {
namespace {

class ProbeTest : public testing::Test {
 protected:
  ProbeTest() {
    darwin::CameraDescription description;
    description.vendor = "Kelva";
    description.peripheralType = 3;
    description.openUserClient = vcam::OpenInProcess(camera_);
    registry_.AttachCamera(description);
    io_iterator_t found = 0;
    IOServiceGetMatchingServices(MACH_PORT_NULL, IOServiceMatching("com_kelva_Glimmer"), &found);
    service_ = IOIteratorNext(found);
    IOObjectRelease(found);
  }
  ~ProbeTest() override {
    IOObjectRelease(service_);
    EXPECT_EQ(darwin::AccountForRegistry().handles, 0U) << "the question leaves nothing open";
  }

  vcam::test::ScratchStorage scratch_;
  std::shared_ptr<vcam::VirtualCamera> camera_ = std::make_shared<vcam::VirtualCamera>(scratch_.CameraOptions());
  darwin::VirtualRegistry registry_;
  io_service_t service_ = 0;
};

TEST_F(ProbeTest, ACameraAnswers) {
  EXPECT_EQ(AskCamera(service_), Answer::kAnswers);
  EXPECT_EQ(AskCamera(service_), Answer::kAnswers) << "the service is still the caller's";
}

TEST_F(ProbeTest, ACameraThatRefusesTheQuestionFails) {
  camera_->Arm({vcam::FaultKind::kFail, 1});
  EXPECT_EQ(AskCamera(service_), Answer::kFails);
}

TEST_F(ProbeTest, ADriverThatBeginsNoSessionRefuses) {
  const auto session = vcam::MakeInProcessSession(camera_);
  ASSERT_EQ(session->Start(), kIOReturnSuccess);
  EXPECT_EQ(AskCamera(service_), Answer::kRefused);
}

}  // namespace
}  // namespace apps::doctor::macos
