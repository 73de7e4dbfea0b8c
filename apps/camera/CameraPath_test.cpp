#include "apps/camera/CameraPath.h"

#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/Failure.h"

namespace apps {
namespace {

TEST(CameraPathTest, ForwardSlashesWillDoAndTrailingOnesGo) {
  EXPECT_EQ(ToCameraPath("I:/DCIM/100ABCDE/IMG_0001.JPG"), "I:\\DCIM\\100ABCDE\\IMG_0001.JPG");
  EXPECT_EQ(ToCameraPath("I:\\DCIM\\"), "I:\\DCIM");
  EXPECT_EQ(ToCameraPath("I:/"), "I:");
}

TEST(CameraPathTest, APathNeedsADrive) {
  for (const char* bad : {"", "DCIM", "/DCIM", "I", "1:\\X", "I:X", "./I:/X"}) {
    EXPECT_THROW(ToCameraPath(bad), Failure) << bad;
  }
}

TEST(CameraPathTest, TheParentOfAFileOnTheDriveIsTheDrive) {
  EXPECT_EQ(Split("I:\\A.TXT").folder, "I:");
  EXPECT_EQ(Split("I:\\A.TXT").name, "A.TXT");
  EXPECT_EQ(Split("I:\\D\\A.TXT").folder, "I:\\D");
  EXPECT_EQ(Split("I:").name, "");
}

TEST(CameraPathTest, NamesIgnoreTheCaseOfAsciiLettersOnly) {
  EXPECT_TRUE(SameName("Img_0001.jpg", "IMG_0001.JPG"));
  EXPECT_FALSE(SameName("\xC3\xA9", "\xC3\x89"));
  EXPECT_FALSE(SameName("A", "AB"));
}

TEST(CameraPathTest, AnEntryIsFoundInTheListingOfItsParent) {
  FakeCamera camera;
  camera.files = {{"A.TXT", "abc"}};
  const auto entry = FindEntry(camera, "I:\\a.txt");
  ASSERT_TRUE(entry.has_value());
  EXPECT_EQ(SizeOf(*entry), 3U);
  EXPECT_FALSE(FindEntry(camera, "I:\\B.TXT").has_value());
}

TEST(CameraPathTest, TheFirstFolderThatIsMissingIsNamed) {
  FakeCamera camera;
  camera.folders = {"DCIM"};
  camera.files = {{"A.TXT", "abc"}};
  EXPECT_NO_THROW(RequireFolder(camera, "I:"));
  EXPECT_NO_THROW(RequireFolder(camera, "I:\\DCIM"));
  EXPECT_THROW(RequireFolder(camera, "I:\\A.TXT"), Failure) << "a file";
  try {
    RequireFolder(camera, "I:\\NOPE\\DEEPER");
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_STREQ(failure.what(), "There is no folder I:\\NOPE on the camera; `kelva ls I:` shows what is there.");
  }
}

TEST(CameraPathTest, AVolumeLabelIsNoFile) {
  FakeCamera camera;
  EXPECT_FALSE(FindEntry(camera, "I:\\LABEL").has_value());
}

TEST(CameraPathTest, SizesAboveTwoGibibytesAreNotNegative) {
  EXPECT_EQ(SizeOf(CameraDirent{"A", -1, 0}), 4'294'967'295ULL);
}

}  // namespace
}  // namespace apps
