#include "vcam/device/CameraPath.h"

#include <gmock/gmock.h>

namespace vcam {
namespace {

TEST(CameraPath, NamesAFileBelowTheStorage) {
  EXPECT_EQ(RelativePath(R"(I:\DCIM\100ABCDE\IMG_0001.JPG)"), "DCIM/100ABCDE/IMG_0001.JPG");
  EXPECT_EQ(RelativePath(R"(i:\a)"), "a");
}

TEST(CameraPath, NamesTheRoot) {
  EXPECT_EQ(RelativePath(R"(I:\)"), "");
  EXPECT_EQ(RelativePath("I:"), "");
}

TEST(CameraPath, PassesOverDoubledAndTrailingBackslashes) {
  EXPECT_EQ(RelativePath(R"(I:\DCIM\\100ABCDE\)"), "DCIM/100ABCDE");
}

TEST(CameraPath, KeepsCaseAndForeignBytes) {
  EXPECT_EQ(RelativePath("I:\\Dcim\\\xC3\xA4"), "Dcim/\xC3\xA4");
}

TEST(CameraPath, RefusesToLeaveTheStorage) {
  for (const char* path : {R"(I:\..)", R"(I:\DCIM\..\..\etc\passwd)", R"(I:\.)", R"(I:\a/b)", R"(I:\/etc/passwd)"}) {
    EXPECT_EQ(RelativePath(path), std::nullopt) << path;
  }
}

TEST(CameraPath, RefusesOtherDrivesAndRelativePaths) {
  for (const char* path : {"", "I", R"(A:\DCIM)", "DCIM", R"(\DCIM)", "I:DCIM", "/DCIM"}) {
    EXPECT_EQ(RelativePath(path), std::nullopt) << path;
  }
}

TEST(CameraPath, RefusesControlCharactersAndWhatIsTooLong) {
  EXPECT_EQ(RelativePath("I:\\a\nb"), std::nullopt);
  EXPECT_EQ(RelativePath("I:\\" + std::string(255, 'x')), std::string(255, 'x'));
  EXPECT_EQ(RelativePath("I:\\" + std::string(256, 'x')), std::nullopt);
  std::string deep = "I:";
  while (deep.size() <= 1024) deep += "\\abc";
  EXPECT_EQ(RelativePath(deep), std::nullopt);
}

TEST(CameraPath, TakesTheFirstCharacterThatIsNoneOfControlAndTheLongestPath) {
  EXPECT_EQ(RelativePath("I:\\a\x1F"), std::nullopt);
  EXPECT_EQ(RelativePath("I:\\a b"), "a b");
  std::string deep = "I:";
  while (deep.size() < 1022) deep += "\\abc";
  EXPECT_TRUE(RelativePath(deep + "\\a"));
  EXPECT_FALSE(RelativePath(deep + "\\ab"));
}

TEST(CameraPath, DoesNotSeeTheStateFolder) {
  EXPECT_EQ(RelativePath(R"(I:\.kelva\state)"), std::nullopt);
  EXPECT_EQ(RelativePath(R"(I:\.kelva)"), std::nullopt);
  EXPECT_FALSE(IsCameraName(".kelva"));
}

TEST(CameraPath, SaysAPathInTheCamerasOwnSyntax) {
  EXPECT_EQ(CameraPath("CRASH/A.LOG"), R"(I:\CRASH\A.LOG)");
}

}  // namespace
}  // namespace vcam
