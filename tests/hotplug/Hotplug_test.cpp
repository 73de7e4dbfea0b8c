#include <gtest/gtest.h>

#include <string>

#include "tests/hotplug/Cameras.h"

namespace {

using Hotplug = hotplug::Cameras;
using hotplug::Listener;

TEST_F(Hotplug, EachCameraThatComesIsReportedOnce) {
  Plug("one");
  Plug("two");
  ASSERT_EQ(Listener::Shared().attached.size(), 2u);
  EXPECT_TRUE(Listener::Shared().attached[0]->CompareSn("one"));
  EXPECT_TRUE(Listener::Shared().attached[1]->CompareSn("two"));
  EXPECT_FALSE(Listener::Shared().attached[0]->IsOpen());
}

TEST_F(Hotplug, ACameraThatComesBackIsReportedAgain) {
  Plug("one");
  Unplug("one");
  Plug("one");
  EXPECT_EQ(Listener::Shared().attached.size(), 2u);
}

TEST_F(Hotplug, CamerasOfBothDriversAreListedTheFirstDriversFirst) {
  Plug("disk", 0);
  Plug("plain", 3);
  const auto cameras = Camera::EnumerateCameras(false, "", false, 0);
  ASSERT_EQ(cameras.size(), 2u);
  EXPECT_TRUE(cameras[0]->CompareSn("plain"));
  EXPECT_TRUE(cameras[0]->IsScsiInquiryCorrect());
  EXPECT_TRUE(cameras[1]->CompareSn("disk"));
  EXPECT_FALSE(cameras[1]->IsScsiInquiryCorrect());
}

TEST_F(Hotplug, AnotherVendorsCameraIsListedOnlyWhenAskedFor) {
  Plug("other", 3, "1.00", "Others");
  EXPECT_TRUE(Camera::EnumerateCameras(false, "", false, 0).empty());
  EXPECT_EQ(Camera::EnumerateCameras(true, "", false, 0).size(), 1u);
}

TEST_F(Hotplug, WithoutCamerasTheListIsEmpty) {
  EXPECT_TRUE(Camera::EnumerateCameras(true, "", false, 0).empty());
  EXPECT_THROW(Camera::GetCamera("one", "", false, false), CameraError);
}

TEST_F(Hotplug, ABadCameraIsReportedAsSuchAndNotAsACamera) {
  Plug("bad", 5, "Q42");
  EXPECT_EQ(Listener::Shared().badCameras, 1);
  EXPECT_TRUE(Listener::Shared().attached.empty());
  EXPECT_TRUE(Camera::EnumerateCameras(true, "", false, 0).empty());
}

TEST_F(Hotplug, ADiscDriveWithAnotherRevisionIsACamera) {
  Plug("disc", 5, "1.00");
  EXPECT_EQ(Listener::Shared().badCameras, 0);
  EXPECT_EQ(Listener::Shared().attached.size(), 1u);
}

// What the lost callback saw; its own address is the context.
struct Loss {
  static void Lost(void* context) {
    auto& self = *static_cast<Loss*>(context);
    ++self.calls;
    self.disconnectedInCallback = self.camera->WasDisconnected();
    if (self.drops) self.camera.reset();
  }
  boost::shared_ptr<Camera> camera;
  int calls = 0;
  bool disconnectedInCallback = true;
  bool drops = false;
};

TEST_F(Hotplug, ACameraThatGoesTellsItsOwnerOnce) {
  Loss loss{PlugAndOpen("one")};
  loss.camera->ListenForCameraLost(Loss::Lost, &loss);
  EXPECT_EQ(loss.calls, 0);
  Unplug("one");
  EXPECT_EQ(loss.calls, 1);
  EXPECT_FALSE(loss.disconnectedInCallback);
  EXPECT_TRUE(loss.camera->WasDisconnected());
}

TEST_F(Hotplug, AnOwnerMayDropTheCameraInItsCallback) {
  Loss loss{PlugAndOpen("one")};
  loss.drops = true;
  loss.camera->ListenForCameraLost(Loss::Lost, &loss);
  Unplug("one");
  EXPECT_EQ(loss.calls, 1);
  EXPECT_FALSE(loss.camera);
}

TEST_F(Hotplug, ACameraThatHasGoneFailsItsTransfersAndClosesQuietly) {
  const boost::shared_ptr<Camera> camera = PlugAndOpen("one");
  Unplug("one");
  EXPECT_THROW(camera->GetTime(), CameraTransferError);
  EXPECT_FALSE(camera->MonitorCmd("x"));
  EXPECT_TRUE(camera->IsOpen());
  camera->Close();
  EXPECT_FALSE(camera->Open());
}

TEST_F(Hotplug, ACameraIsOpenForOneHolderAtATime) {
  const boost::shared_ptr<Camera> first = PlugAndOpen("one");
  const boost::shared_ptr<Camera> second = Camera::GetCamera("one", "", false, false);
  EXPECT_FALSE(second->Open());
  first->Close();
  EXPECT_TRUE(second->Open());
}

TEST_F(Hotplug, ACameraDroppedWhileOpenGivesItsSessionBack) {
  PlugAndOpen("one").reset();
  EXPECT_TRUE(Camera::GetCamera("one", "", false, false)->Open());
}

}  // namespace
