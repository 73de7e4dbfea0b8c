#include "OsxCamera.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "testing/FakeCalls.h"
#include "testing/OsxCameraState.h"

// The session with the driver, the camera's end, and what this transport answers without the driver.

namespace {

using Log = std::vector<std::string>;

class Session : public fake::Test {
 protected:
  Session() : service_(AddCamera("camera")) { camera_ = std::make_unique<OsxCamera>(framework().Hand(service_)); }
  ~Session() override {
    camera_.reset();
    EXPECT_TRUE(framework().OpenHandles().empty());
  }
  io_service_t service_;
  std::unique_ptr<OsxCamera> camera_;
};

TEST_F(Session, ANewCameraIsClosedAndHasCalledNothing) {
  EXPECT_FALSE(camera_->IsOpen());
  EXPECT_FALSE(camera_->WasDisconnected());
  EXPECT_EQ(log(), Log{});
}

TEST_F(Session, OpenConnectsAndThenStartsTheSession) {
  EXPECT_TRUE(camera_->Open());
  EXPECT_TRUE(camera_->IsOpen());
  EXPECT_EQ(log(), (Log{"Open camera", "Scalar 0 on connection"}));
}

TEST_F(Session, OpenOfAnOpenCameraCallsNothing) {
  camera_->Open();
  log().clear();
  EXPECT_TRUE(camera_->Open());
  EXPECT_EQ(log(), Log{});
}

TEST_F(Session, OpenDoesNotExamineTheResultOfTheConnection) {
  framework().results["IOServiceOpen"] = {kIOReturnNotPrivileged};
  EXPECT_TRUE(camera_->Open());
}

TEST_F(Session, AFailedStartClosesTheConnection) {
  framework().results["IOConnectCallScalarMethod"] = {kIOReturnBusy};
  EXPECT_FALSE(camera_->Open());
  EXPECT_FALSE(camera_->IsOpen());
  EXPECT_EQ(log(), (Log{"Open camera", "Scalar 0 on connection", "Close connection"}));
  EXPECT_TRUE(camera_->Open());
}

TEST_F(Session, AConnectionThatWasNotMadeIsStartedAndClosedAllTheSame) {
  framework().makesConnection = false;
  framework().results["IOServiceOpen"] = {kIOReturnExclusiveAccess};
  EXPECT_FALSE(camera_->Open());
  EXPECT_FALSE(camera_->IsOpen());
  EXPECT_EQ(log(), (Log{"Open camera", "Scalar 0 on 0", "Close 0"}));
}

TEST_F(Session, CloseEndsTheSessionAndThenTheConnection) {
  camera_->Open();
  log().clear();
  camera_->Close();
  EXPECT_FALSE(camera_->IsOpen());
  EXPECT_EQ(log(), (Log{"Scalar 1 on connection", "Close connection"}));
}

TEST_F(Session, CloseIgnoresTheResultOfTheEnd) {
  camera_->Open();
  framework().results["IOConnectCallScalarMethod"] = {kIOReturnIOError};
  camera_->Close();
  EXPECT_FALSE(camera_->IsOpen());
}

TEST_F(Session, CloseOfAClosedCameraCallsNothing) {
  camera_->Close();
  EXPECT_EQ(log(), Log{});
}

TEST_F(Session, ACameraCanBeOpenedAgain) {
  camera_->Open();
  camera_->Close();
  EXPECT_TRUE(camera_->Open());
}

TEST_F(Session, TheEndOfAnOpenCameraClosesAndReleasesItsService) {
  camera_->Open();
  log().clear();
  camera_.reset();
  EXPECT_EQ(log(), (Log{"Scalar 1 on connection", "Close connection", "Release camera"}));
}

TEST_F(Session, TheEndOfAWatchedCameraReleasesTheWatchBeforeTheService) {
  camera_->ListenForCameraLost(nullptr, nullptr);
  camera_->Open();
  log().clear();
  camera_.reset();
  EXPECT_EQ(log(), (Log{"Scalar 1 on connection", "Close connection", "Release interest in camera", "Release camera"}));
}

TEST_F(Session, TheEndOfAClosedCameraReleasesItsService) {
  camera_.reset();
  EXPECT_EQ(log(), Log{"Release camera"});
}

TEST_F(Session, GivesItsServiceWithoutAReference) {
  log().clear();
  EXPECT_EQ(kelva::ServiceOf(*camera_), service_);
  EXPECT_EQ(log(), Log{});
}

TEST_F(Session, NameMountPathAndCancelAreFixed) {
  EXPECT_EQ(camera_->Name(), "Camera");
  EXPECT_EQ(camera_->MountPath(), "");
  EXPECT_FALSE(camera_->Cancel(true, true));
  EXPECT_FALSE(camera_->Cancel(false, false));
  camera_->ClearCancel(true);
  EXPECT_EQ(log(), Log{});
}

TEST_F(Session, HasTheChunkSizeAndTheIntervalOfThisTransport) {
  int sizes[3];
  std::memcpy(sizes, reinterpret_cast<const char*>(static_cast<Camera*>(camera_.get())) + 8, sizeof sizes);
  EXPECT_EQ(sizes[1], 65536);
  EXPECT_EQ(sizes[2], 262144);
  EXPECT_FALSE(camera_->enableHexDump());
}

TEST_F(Session, HoldsItsFieldsInOrderAndNothingElse) {
  EXPECT_EQ(sizeof(OsxCamera), 56u);
  camera_->Open();
  unsigned int handles[3];
  std::memcpy(handles, reinterpret_cast<const char*>(camera_.get()) + 20, sizeof handles);
  EXPECT_EQ(handles[0], 0u);
  EXPECT_EQ(handles[1], service_);
  EXPECT_EQ(framework().Name(handles[2]), "connection");
}

class Inquiry : public fake::Test {
 protected:
  bool Check(const std::map<std::string, std::string>& properties) {
    const io_object_t parent =
        framework().Add({"parent", "", 0, {{"Vendor Identification", "Kelva"}, {"IOClass", "com_kelva_Glimmer"}}});
    const io_service_t service = framework().Add({"camera", "", parent, properties});
    const bool correct = OsxCamera(framework().Hand(service)).IsScsiInquiryCorrect();
    EXPECT_TRUE(framework().OpenHandles().empty());
    return correct;
  }
};

TEST_F(Inquiry, OfTheMakerUnderTheFirstDriverIsCorrect) {
  EXPECT_TRUE(Check({{"Vendor Identification", "Kelva"}, {"IOClass", "com_kelva_Glimmer"}}));
  EXPECT_EQ(log(), (Log{"Property Vendor Identification of camera", "Equal Kelva Kelva", "Property IOClass of camera",
                        "Equal com_kelva_Glimmer com_kelva_Glimmer", "Release camera"}));
}

// Enumeration accepts both drivers; this check only the first.
TEST_F(Inquiry, UnderTheSecondDriverIsNotCorrect) {
  EXPECT_FALSE(Check({{"Vendor Identification", "Kelva"}, {"IOClass", "com_kelva_Glimmer_ms"}}));
}

TEST_F(Inquiry, OfAnotherVendorIsNotCorrectAndTheClassIsNotRead) {
  EXPECT_FALSE(Check({{"Vendor Identification", "kelva"}, {"IOClass", "com_kelva_Glimmer"}}));
  EXPECT_EQ(log().size(), 3u);
}

TEST_F(Inquiry, WithoutAPropertyIsNotCorrectWhateverTheParentHas) {
  EXPECT_FALSE(Check({{"IOClass", "com_kelva_Glimmer"}}));
  EXPECT_FALSE(Check({{"Vendor Identification", "Kelva"}}));
  EXPECT_FALSE(Check({}));
}

}  // namespace
