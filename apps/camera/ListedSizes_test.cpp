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

TEST_F(ListedSizesTest, FilesOfFoldersInTurnCostOneListingEach) {
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(sizes_.SizeOf("I:\\A.JPG"), 5U);
    EXPECT_EQ(sizes_.SizeOf("I:\\ELSE\\A.JPG"), std::nullopt);
    EXPECT_EQ(sizes_.Agrees("I:\\MORE\\A.JPG", 5), std::nullopt);
  }
  // A file that is not listed is looked for again by Agrees alone.
  EXPECT_EQ(camera_.listings, 3 + 9);
}

TEST_F(ListedSizesTest, OnlyTheLastEightFoldersAreKept) {
  EXPECT_EQ(sizes_.SizeOf("I:\\A.JPG"), 5U);
  for (int i = 0; i < 7; ++i) sizes_.SizeOf("I:\\" + std::to_string(i) + "\\A.JPG");
  EXPECT_EQ(sizes_.SizeOf("I:\\A.JPG"), 5U);
  EXPECT_EQ(camera_.listings, 8);
  for (int i = 0; i < 8; ++i) sizes_.SizeOf("I:\\N" + std::to_string(i) + "\\A.JPG");
  EXPECT_EQ(sizes_.SizeOf("I:\\A.JPG"), 5U);
  EXPECT_EQ(camera_.listings, 17);
}

TEST_F(ListedSizesTest, AFileThatIsNotListedIsNeitherRightNorWrong) {
  EXPECT_EQ(sizes_.Agrees("I:\\C.JPG", 1), std::nullopt);
  EXPECT_EQ(sizes_.Agrees("I:\\SUB", 0), std::nullopt);
  EXPECT_EQ(sizes_.Agrees("I:\\ELSE\\A.JPG", 5), std::nullopt);
}

}  // namespace
}  // namespace apps
