#include "apps/mount/Place.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "apps/commandline/Failure.h"

namespace apps {
namespace {

class PlaceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string name = (std::filesystem::temp_directory_path() / "kelva-place-XXXXXX").string();
    folder_ = ::mkdtemp(name.data());
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::string folder_;
};

TEST_F(PlaceTest, AMissingFolderIsMadeAndRemovedAgain) {
  const std::string path = folder_ + "/a/b";
  {
    const Place place(path + "/", "K1");
    EXPECT_EQ(place.Path(), path);
    EXPECT_TRUE(place.IsMade());
    EXPECT_TRUE(std::filesystem::is_directory(path));
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(PlaceTest, AnEmptyFolderIsTakenAndStays) {
  { EXPECT_FALSE(Place(folder_, "K1").IsMade()); }
  EXPECT_TRUE(std::filesystem::is_directory(folder_));
}

TEST_F(PlaceTest, WhateverIsNoEmptyFolderIsRefused) {
  std::ofstream(folder_ + "/file") << "x";
  EXPECT_THROW(Place(folder_, "K1"), Failure);
  EXPECT_THROW(Place(folder_ + "/file", "K1"), Failure);
}

TEST_F(PlaceTest, WithoutANameItIsInTheHomeFolder) {
  ::setenv("HOME", folder_.c_str(), 1);
  EXPECT_EQ(Place(std::nullopt, "K/1").Path(), folder_ + "/Kelva K%2F1");
}

TEST_F(PlaceTest, WhatIsNotMountedCannotBeUnmounted) {
  EXPECT_FALSE(UnmountLazily(folder_));
}

}  // namespace
}  // namespace apps
