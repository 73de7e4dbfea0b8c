#include "apps/import/Others.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/camera/testing/TreeCamera.h"
#include "apps/commandline/testing/SilentContext.h"
#include "apps/import/testing/SyncTest.h"

namespace apps {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

class OthersTest : public SyncFolderTest, protected SilentContext {
 protected:
  OthersTest() {
    camera_.AddFolder("I:\\DCIM", "100ABCDE");
    camera_.AddFile("I:\\DCIM\\100ABCDE", "img_0001.jpg", "one");
    camera_.AddFile("I:\\DCIM\\100ABCDE", "MVI_0001.MP4", "a video");
  }
  OtherFiles Find() { return FindOthers(context_, camera_, {Picture(1)}); }
  std::vector<std::string> FoundPaths() {
    std::vector<std::string> paths;
    for (const OtherFile& file : Find().files) paths.push_back(file.path);
    return paths;
  }
  static std::string Local(const std::string& path) { return OtherFile{path}.Local().Text(); }

  TreeCamera camera_;
};

TEST_F(OthersTest, FilesOfTheCatalogueAreNoOthersInAnyCaseOfLetters) {
  EXPECT_THAT(FoundPaths(), ElementsAre("I:\\DCIM\\100ABCDE\\MVI_0001.MP4"));
}

// As no FAT has them, but other file systems do.
TEST_F(OthersTest, AFileBesideThePictureOfItsNameInAnotherCaseIsAnother) {
  camera_.AddFile("I:\\DCIM\\100ABCDE", "IMG_0001.JPG", "the picture");
  EXPECT_THAT(FoundPaths(),
              UnorderedElementsAre("I:\\DCIM\\100ABCDE\\MVI_0001.MP4", "I:\\DCIM\\100ABCDE\\img_0001.jpg"));
}

TEST_F(OthersTest, AFileBesideAPictureThatTheCatalogueDoesNotGiveItIsAnother) {
  camera_.AddFile("I:\\DCIM\\100ABCDE", "IMG_0001.RAW", "raw data");
  EXPECT_EQ(Find().files.size(), 2U);
}

TEST_F(OthersTest, NestedFoldersAndMiscAreLookedAt) {
  camera_.AddFolder("I:\\DCIM\\100ABCDE", "deeper");
  camera_.AddFile("I:\\DCIM\\100ABCDE\\deeper", "PANO.JPG", "wide");
  camera_.AddFile("I:\\MISC", "AUTPRINT.MRK", "");
  EXPECT_THAT(FoundPaths(), UnorderedElementsAre("I:\\DCIM\\100ABCDE\\MVI_0001.MP4",
                                                 "I:\\DCIM\\100ABCDE\\deeper\\PANO.JPG", "I:\\MISC\\AUTPRINT.MRK"));
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
  EXPECT_EQ(others.files.size(), 1U);
}

TEST_F(OthersTest, ARowOfOneIsNoRowOfAPicture) {
  const ManifestKey key = Find().files[0].Key("K1");
  EXPECT_EQ(key.type, 0);
  EXPECT_NE(key.picture.size(), 48U);
}

TEST_F(OthersTest, ItsFolderIsTheOneBelowDcim) {
  EXPECT_EQ(OtherFile{"I:\\DCIM\\100ABCDE\\deeper\\PANO.JPG"}.Folder(), "100ABCDE");
  EXPECT_EQ(OtherFile{"I:\\DCIM\\loose.mp4"}.Folder(), "");
  EXPECT_EQ(OtherFile{"I:\\MISC\\AUTPRINT.MRK"}.Folder(), "");
}

}  // namespace
}  // namespace apps
