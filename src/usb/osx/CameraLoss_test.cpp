#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "OsxCameraError.h"
#include "testing/FakeCalls.h"
#include "testing/OsxCameraState.h"

namespace {

using Log = std::vector<std::string>;
constexpr unsigned int kTerminated = 0xE0000010;

// What the lost callback saw; its own address is the context.
struct Owner {
  static void Lost(void* context) {
    auto& self = *static_cast<Owner*>(context);
    ++self.calls;
    self.disconnectedInCallback = self.camera && self.camera->WasDisconnected();
    if (self.drops) self.camera.reset();
  }
  static void LostToo(void* context) { ++static_cast<Owner*>(context)->others; }
  boost::shared_ptr<Camera> camera;
  int calls = 0;
  int others = 0;
  bool disconnectedInCallback = false;
  bool drops = false;
};

class CameraLoss : public fake::Test {
 protected:
  CameraLoss() : service_(AddCamera("camera")) { owner_.camera.reset(new OsxCamera(framework().Hand(service_))); }
  ~CameraLoss() override {
    owner_.camera.reset();
    EXPECT_TRUE(framework().OpenHandles().empty());
  }
  void Listen() { owner_.camera->ListenForCameraLost(Owner::Lost, &owner_); }
  void Message(unsigned int type) {
    const fake::Interest& interest = framework().interests.at(0);
    interest.handler(interest.refCon, interest.service, type, nullptr);
  }
  io_service_t service_;
  Owner owner_;
};

TEST_F(CameraLoss, RegistersInterestInItsServiceOnThePort) {
  OsxCamera::SetupNotifyPort();
  log().clear();
  Listen();
  EXPECT_EQ(log(), Log{"Interest in camera"});
  EXPECT_EQ(framework().interests[0].service, service_);
  EXPECT_EQ(framework().interests[0].refCon, static_cast<OsxCamera*>(owner_.camera.get()));
}

// The real call would crash on no port.
TEST_F(CameraLoss, MakesThePortWhenNobodyHasListenedYet) {
  Listen();
  EXPECT_EQ(log(), (Log{"CreatePort", "AddSource current run loop, source of the port, kCFRunLoopDefaultMode",
                        "Interest in camera"}));
}

TEST_F(CameraLoss, ASecondCallChangesTheCallbackAndRegistersNothing) {
  Listen();
  owner_.camera->ListenForCameraLost(Owner::LostToo, &owner_);
  EXPECT_EQ(framework().interests.size(), 1u);
  Message(kTerminated);
  EXPECT_EQ(owner_.calls, 0);
  EXPECT_EQ(owner_.others, 1);
}

TEST_F(CameraLoss, ASecondCallChangesTheContextToo) {
  Owner other;
  Listen();
  owner_.camera->ListenForCameraLost(Owner::Lost, &other);
  Message(kTerminated);
  EXPECT_EQ(owner_.calls, 0);
  EXPECT_EQ(other.calls, 1);
}

TEST_F(CameraLoss, TerminationCallsBackOnceAndThenTheCameraIsDisconnected) {
  Listen();
  EXPECT_FALSE(owner_.camera->WasDisconnected());
  Message(kTerminated);
  EXPECT_EQ(owner_.calls, 1);
  EXPECT_FALSE(owner_.disconnectedInCallback);
  EXPECT_TRUE(owner_.camera->WasDisconnected());
}

// The driver chooses which of these messages it sends; a real one may send none of them.
TEST_F(CameraLoss, EveryOtherMessageIsIgnored) {
  Listen();
  for (const unsigned int type : {0u, 0x10u, 0xE0000020u, 0xE0000030u, 0xE0000100u, 0xE0000101u, 0xE0000110u,
                                  0xE0000130u, 0xE0000011u, 0x80000010u}) {
    Message(type);
  }
  EXPECT_EQ(owner_.calls, 0);
  EXPECT_FALSE(owner_.camera->WasDisconnected());
}

TEST_F(CameraLoss, IsKnownByItsCameraWhateverServiceTheMessageNames) {
  Listen();
  OsxCamera::CameraMessage(framework().interests[0].refCon, 0, kTerminated, nullptr);
  EXPECT_TRUE(owner_.camera->WasDisconnected());
}

TEST_F(CameraLoss, ANullCallbackIsStoredAsGiven) {
  Listen();
  owner_.camera->ListenForCameraLost(nullptr, nullptr);
  Message(kTerminated);
  EXPECT_EQ(owner_.calls, 0);
  EXPECT_TRUE(owner_.camera->WasDisconnected());
}

TEST_F(CameraLoss, DoesNotCloseTheSession) {
  owner_.camera->Open();
  Listen();
  Message(kTerminated);
  EXPECT_TRUE(owner_.camera->IsOpen());
}

TEST_F(CameraLoss, TheCallbackMayDropTheCamera) {
  owner_.drops = true;
  Listen();
  owner_.camera->Open();
  log().clear();
  Message(kTerminated);
  EXPECT_EQ(owner_.calls, 1);
  EXPECT_FALSE(owner_.camera);
  EXPECT_EQ(log(), (Log{"Scalar 1 on connection", "Close connection", "Release interest in camera", "Release camera"}));
}

TEST_F(CameraLoss, ARefusedRegistrationThrowsWhateverTheSwitchSaysAndStoresNothing) {
  Camera::throwExceptions_ = false;
  framework().results["IOServiceAddInterestNotification"] = {kIOReturnUnsupported};
  try {
    Listen();
    ADD_FAILURE() << "no error";
  } catch (const OsxCameraError& error) {
    EXPECT_TRUE(std::string(error.what()).starts_with("OsxCameraError: IOServiceAddInterestNotifaction() failed."));
  }
  Camera::throwExceptions_ = true;
  Listen();
  Message(kTerminated);
  EXPECT_EQ(owner_.calls, 1);
}

// A refused registration may leave something in the handle.
TEST_F(CameraLoss, ARefusedRegistrationLeavesTheCameraUnwatched) {
  framework().results["IOServiceAddInterestNotification"] = {kIOReturnUnsupported};
  framework().refusedInterest = 0x777;
  EXPECT_THROW(Listen(), OsxCameraError);
  EXPECT_TRUE(framework().interests.empty());
  Listen();
  ASSERT_EQ(framework().interests.size(), 1u);
  Message(kTerminated);
  EXPECT_EQ(owner_.calls, 1);
}

}  // namespace
