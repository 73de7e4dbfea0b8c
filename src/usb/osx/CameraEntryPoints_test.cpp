#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/FakeCalls.h"
#include "testing/OsxCameraState.h"

// The library's entry points reach this transport; what they ignore changes nothing.

namespace {

using Log = std::vector<std::string>;

class EntryPoints : public fake::Test {};

void Count(boost::shared_ptr<Camera>, void* context) {
  ++*static_cast<int*>(context);
}
void CountBad(void* context) {
  ++*static_cast<int*>(context);
}

TEST_F(EntryPoints, EnumerateCamerasHandsOnWhetherAllVendorsAreListed) {
  AddCamera("one");
  AddCamera("other", "com_kelva_Glimmer", "Others");
  EXPECT_EQ(Camera::EnumerateCameras(true, "", false, 0).size(), 2u);
  EXPECT_EQ(Camera::EnumerateCameras(false, "", false, 0).size(), 1u);
  EXPECT_EQ(Camera::EnumerateCameras(false, "any", true, -1).size(), 1u);
}

TEST_F(EntryPoints, GetCameraFindsACameraOfAnyVendorBySerialNumber) {
  AddCamera("one");
  AddCamera("other", "com_kelva_Glimmer", "Others");
  const boost::shared_ptr<Camera> camera = Camera::GetCamera("other", "", false, false);
  ASSERT_TRUE(camera);
  EXPECT_TRUE(camera->CompareSn("other"));
  EXPECT_FALSE(*camera == *camera);
}

TEST_F(EntryPoints, GetCameraOfAnUnknownSerialNumberThrows) {
  AddCamera("one");
  try {
    Camera::GetCamera("two", "", false, false);
    FAIL();
  } catch (const CameraError& error) {
    EXPECT_STREQ(error.what(), "Camera error: Camera not found.");
  }
  EXPECT_TRUE(framework().OpenHandles().empty());
}

TEST_F(EntryPoints, ListenForCameraAttachReportsWhateverItsFlagSays) {
  AddCamera("one");
  int calls = 0;
  Camera::ListenForCameraAttach(Count, &calls, false);
  Camera::ListenForCameraAttach(Count, &calls, true);
  EXPECT_EQ(calls, 2);
}

TEST_F(EntryPoints, ListenForBadCameraAttachReports) {
  const io_object_t grandparent =
      framework().Add({"grandparent", "", 0, {{"Vendor Identification", "Kelva"}, {"Product Revision Level", "Q42"}}});
  const io_object_t parent = framework().Add({"parent", "", grandparent, {}});
  framework().Add({"disc", "IOCompactDiscServices", parent, {}});
  int calls = 0;
  Camera::ListenForBadCameraAttach(CountBad, &calls);
  EXPECT_EQ(calls, 1);
}

TEST_F(EntryPoints, NullCallbacksRegisterNothing) {
  Camera::ListenForCameraAttach(nullptr, nullptr, true);
  Camera::ListenForBadCameraAttach(nullptr, nullptr);
  EXPECT_EQ(log(), Log{});
}

}  // namespace
