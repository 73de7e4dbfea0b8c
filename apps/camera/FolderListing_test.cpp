#include "apps/camera/FolderListing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

TEST(FolderListingTest, ListsWhatTheCameraSends) {
  FakeCamera camera;
  camera.files = {{"A.JPG", "12345"}, {"B.JPG", ""}};
  camera.folders = {"SUB"};
  std::vector<std::string> names;
  for (const CameraDirent& entry : ListFolder(camera, "I:")) {
    names.push_back(entry.name + " " + std::to_string(entry.size) + " " + std::to_string(entry.attributes));
  }
  EXPECT_THAT(names, testing::ElementsAre(". 0 16", "LABEL 0 8", "A.JPG 5 32", "B.JPG 0 32", "SUB 0 16"));
}

TEST(FolderListingTest, AListingOfSeveralChunksIsWhole) {
  FakeCamera camera;
  for (int i = 10'000; i < 20'000; ++i) camera.files["IMG" + std::to_string(i)] = "";
  EXPECT_EQ(ListFolder(camera, "I:").size(), 10'002U);
}

TEST(FolderListingTest, AListingWithoutEndEndsAtItsBound) {
  class Endless final : public FakeCamera {
   public:
    bool Transfer(const _VscCdb&, int, int& size, char*, bool) override {
      sent += size;
      return true;
    }
    long long sent = 0;
  } camera;
  try {
    ListFolder(camera, "I:\\DCIM");
    FAIL() << "listed";
  } catch (const CameraError& error) {
    EXPECT_STREQ(error.what(), "Camera error: the listing of I:/DCIM goes on after 16 MiB");
  }
  EXPECT_LE(camera.sent, (16 << 20) + 100'000);
}

TEST(FolderListingTest, ARefusedListingIsEmpty) {
  class Refusing final : public FakeCamera {
   public:
    bool Transfer(const _VscCdb&, int, int&, char*, bool) override { return false; }
  } camera;
  EXPECT_THAT(ListFolder(camera, "I:"), testing::IsEmpty());
}

}  // namespace
}  // namespace apps
