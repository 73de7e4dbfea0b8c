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

TEST(CameraPathTest, TheDriveMayBeLeftOut) {
  EXPECT_EQ(ToCameraPath("DCIM/100ABCDE"), "I:\\DCIM\\100ABCDE");
  EXPECT_EQ(ToCameraPath("/DCIM"), "I:\\DCIM");
  EXPECT_EQ(ToCameraPath("MISC"), "I:\\MISC");
  EXPECT_EQ(ToCameraPath("/"), "I:");
}

TEST(CameraPathTest, NothingAndWhatOnlyLooksLikeADriveAreNoPaths) {
  for (const char* bad : {"", "1:\\X", "I:X", "./I:/X"}) EXPECT_THROW(ToCameraPath(bad), Failure) << bad;
}

TEST(CameraPathTest, AShownPathMeansTheSameFileWhenItIsTyped) {
  EXPECT_EQ(ShownPath("I:\\DCIM\\100ABCDE\\IMG_0001.JPG"), "I:/DCIM/100ABCDE/IMG_0001.JPG");
  EXPECT_EQ(ShownPath("I:\\IM\xFF_1.JPG"), "'I:/IM\\xff_1.JPG'");
  EXPECT_EQ(ToCameraPath("I:/IM\\xff_1.JPG"), "I:\\IM\xFF_1.JPG");
  EXPECT_EQ(ShownPath("I:\\a\x1b[2J"), "'I:/a\\x1b[2J'");
  EXPECT_EQ(ToCameraPath("I:/a\\x1b[2J"), "I:\\a\x1b[2J");
  EXPECT_EQ(ShownPath("I:\\\xE2\x80\xAE.JPG"), "'I:/\\u{202e}.JPG'");
  EXPECT_EQ(ToCameraPath("I:/\\u{202e}.JPG"), "I:\\\xE2\x80\xAE.JPG");
  EXPECT_EQ(ShownPath("I:\\a/b"), "'I:/a\\x2fb'");
  EXPECT_EQ(ToCameraPath("I:/a\\x2fb"), "I:\\a/b");
}

TEST(CameraPathTest, AShellTakesAShownPathAsOneWord) {
  EXPECT_EQ(ShownPath("I:\\My holiday 1.jpg"), "'I:/My holiday 1.jpg'");
  EXPECT_EQ(ShownPath("I:\\it's $HOME.jpg"), "'I:/it'\\''s $HOME.jpg'");
  EXPECT_EQ(ShownPath("I:\\Z\xC3\xBCrich.JPG"), "I:/Z\xC3\xBCrich.JPG");
}

TEST(CameraPathTest, ABackslashThatIsNoEscapeSeparates) {
  EXPECT_EQ(ToCameraPath("I:/DCIM\\x41"), "I:\\DCIM\\x41") << "an A is shown as A";
  EXPECT_EQ(ToCameraPath("I:\\DCIM\\xff"), "I:\\DCIM\\xff") << "no forward slash";
  EXPECT_EQ(ToCameraPath("I:/DCIM\\x1"), "I:\\DCIM\\x1");
  EXPECT_EQ(ToCameraPath("I:/\\u{110000}"), "I:\\\\u{110000}");
  EXPECT_EQ(ToCameraPath("I:/A.JPG\\x00b"), "I:\\A.JPG\\x00b") << "no name has a NUL; the camera would read I:\\A.JPG";
  EXPECT_EQ(ToCameraPath("I:/\\u{}"), "I:\\\\u{}");
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
  EXPECT_EQ(RequireFolder(camera, "I:\\dcim"), "I:\\DCIM");
  EXPECT_THROW(RequireFolder(camera, "I:\\A.TXT"), Failure) << "a file";
  try {
    RequireFolder(camera, "I:\\NOPE\\DEEPER");
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_STREQ(failure.what(), "There is no folder I:/NOPE on the camera; `kelva ls I:` shows what is there.");
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
