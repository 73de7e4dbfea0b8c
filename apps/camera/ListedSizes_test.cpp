#include "apps/camera/ListedSizes.h"

#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"

namespace apps {
namespace {

class CountingCamera : public FakeCamera {
 public:
  std::vector<CameraDirent> ReadDir(const char* path) override {
    ++listings;
    return FakeCamera::ReadDir(path);
  }
  int listings = 0;
};

class ListedSizesTest : public testing::Test {
 protected:
  ListedSizesTest() {
    camera_.files = {{"A.JPG", "12345"}, {"B.JPG", ""}};
    camera_.folders = {"SUB"};
  }
  CountingCamera camera_;
  ListedSizes sizes_{camera_};
};

TEST_F(ListedSizesTest, FilesOfOneFolderCostOneListing) {
  EXPECT_EQ(sizes_.Agrees("I:\\A.JPG", 5), true);
  EXPECT_EQ(sizes_.Agrees("I:\\B.JPG", 0), true);
  EXPECT_EQ(sizes_.Agrees("I:\\a.jpg", 5), true);
  EXPECT_EQ(camera_.listings, 1);
}

TEST_F(ListedSizesTest, AnotherSizeIsNamed) {
  EXPECT_EQ(sizes_.Agrees("I:\\A.JPG", 4), false);
  EXPECT_EQ(sizes_.Listed(), 5U);
}

TEST_F(ListedSizesTest, AFileThatGrewIsLookedAtOnceMore) {
  EXPECT_EQ(sizes_.Agrees("I:\\A.JPG", 5), true);
  camera_.files["A.JPG"] = "1234567";
  EXPECT_EQ(sizes_.Agrees("I:\\A.JPG", 7), true);
  EXPECT_EQ(camera_.listings, 2);
}

TEST_F(ListedSizesTest, AFileThatIsNotListedIsNeitherRightNorWrong) {
  EXPECT_EQ(sizes_.Agrees("I:\\C.JPG", 1), std::nullopt);
  EXPECT_EQ(sizes_.Agrees("I:\\SUB", 0), std::nullopt);
  EXPECT_EQ(sizes_.Agrees("I:\\ELSE\\A.JPG", 5), std::nullopt);
}

}  // namespace
}  // namespace apps
