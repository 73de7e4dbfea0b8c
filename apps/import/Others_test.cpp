#include "apps/import/Others.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/camera/testing/TreeCamera.h"
#include "apps/commandline/testing/SilentContext.h"
#include "apps/import/testing/SyncTest.h"

namespace apps {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class OthersTest : public SyncFolderTest, protected SilentContext {
 protected:
  OthersTest() {
    camera_.AddFolder("I:\\DCIM", "100ABCDE");
    camera_.AddFile("I:\\DCIM\\100ABCDE", "img_0001.jpg", "one");
    camera_.AddFile("I:\\DCIM\\100ABCDE", "MVI_0001.MP4", "a video");
  }
  OtherFiles Find() { return FindOthers(context_, camera_, {Picture(1)}, "K1", manifest_); }
  static std::vector<std::string> Paths(const std::vector<OtherFile>& files) {
    std::vector<std::string> paths;
    for (const OtherFile& file : files) paths.push_back(file.path);
    return paths;
  }
  static std::string Local(const std::string& path) { return OtherFile{path}.Local().Text(); }

  TreeCamera camera_;
};

TEST_F(OthersTest, FilesOfTheCatalogueAreNoOthersInAnyCaseOfLetters) {
  EXPECT_THAT(Paths(Find().fresh), ElementsAre("I:\\DCIM\\100ABCDE\\MVI_0001.MP4"));
}

TEST_F(OthersTest, AFileBesideAPictureThatTheCatalogueDoesNotGiveItIsAnother) {
  camera_.AddFile("I:\\DCIM\\100ABCDE", "IMG_0001.RAW", "raw data");
  EXPECT_EQ(Find().fresh.size(), 2U);
}

TEST_F(OthersTest, NestedFoldersAndMiscAreLookedAt) {
  camera_.AddFolder("I:\\DCIM\\100ABCDE", "deeper");
  camera_.AddFile("I:\\DCIM\\100ABCDE\\deeper", "PANO.JPG", "wide");
  camera_.AddFile("I:\\MISC", "AUTPRINT.MRK", "");
  EXPECT_THAT(Paths(Find().fresh),
              UnorderedElementsAre("I:\\DCIM\\100ABCDE\\MVI_0001.MP4", "I:\\DCIM\\100ABCDE\\deeper\\PANO.JPG",
                                   "I:\\MISC\\AUTPRINT.MRK"));
}

TEST_F(OthersTest, TheyLieUnderTheNamesThatTheyHaveOnTheCamera) {
  EXPECT_EQ(Local("I:\\DCIM\\100ABCDE\\MVI_0001.MP4"), "100ABCDE/MVI_0001.MP4");
  EXPECT_EQ(Local("I:\\DCIM\\100ABCDE\\deeper\\PANO.JPG"), "100ABCDE/deeper/PANO.JPG");
  EXPECT_EQ(Local("I:\\DCIM\\loose.mp4"), "DCIM/loose.mp4");
  EXPECT_EQ(Local("I:\\MISC\\AUTPRINT.MRK"), "MISC/AUTPRINT.MRK");
}

TEST_F(OthersTest, NoNameLeavesTheTargetOrHidesInIt) {
  EXPECT_EQ(Local("I:\\DCIM\\..\\.kelva-manifest.sqlite"), "%2E./%2Ekelva-manifest.sqlite");
  EXPECT_EQ(Local("I:\\DCIM\\a/../../b\\x\n"), "a%2F..%2F..%2Fb/x%0A");
}

TEST_F(OthersTest, ADepthWithoutEndIsCutAndSaid) {
  std::string folder = "I:\\DCIM";
  for (int i = 0; i < 50; ++i) {
    camera_.AddFolder(folder, "D");
    folder += "\\D";
  }
  camera_.AddFile(folder, "X.BIN", "x");
  const OtherFiles others = Find();
  EXPECT_TRUE(others.isCut);
  EXPECT_EQ(others.fresh.size(), 1U);
}

TEST_F(OthersTest, TheManifestKnowsThemByPathAndSize) {
  manifest_.Record({{Find().fresh[0].Key("K1"), "a.mp4", "", 7, false, false}});
  EXPECT_THAT(Find().fresh, IsEmpty());
  EXPECT_EQ(Find().known.size(), 1U);
  camera_.tree["I:\\DCIM\\100ABCDE"][1].size = 8;
  EXPECT_EQ(Find().fresh.size(), 1U);
}

TEST_F(OthersTest, OneThatWasDeletedOnTheCameraAndIsThereOnceMoreIsNew) {
  manifest_.Record({{Find().fresh[0].Key("K1"), "a.mp4", "", 7, true, true}});
  EXPECT_EQ(Find().fresh.size(), 1U);
}

TEST_F(OthersTest, ARowOfOneIsNoRowOfAPicture) {
  const ManifestKey key = Find().fresh[0].Key("K1");
  EXPECT_EQ(key.type, 0);
  EXPECT_NE(key.picture.size(), 48U);
}

TEST_F(OthersTest, WhatIsInTheTargetWithItsSizeNeedsNoRoom) {
  EXPECT_EQ(Find().InNumbers(&folder_).bytes, 7U);
  folder_.Below("100ABCDE");
  std::ofstream(path_ + "/100ABCDE/MVI_0001.MP4") << "a video";
  EXPECT_EQ(Find().InNumbers(&folder_).bytes, 0U);
  EXPECT_EQ(Find().InNumbers().bytes, 7U);
}

}  // namespace
}  // namespace apps
