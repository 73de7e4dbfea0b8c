#include "apps/camera/Picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

namespace apps {
namespace {

using testing::ElementsAre;

DcfObj Example() {
  DcfObj picture{};
  std::memcpy(picture.directorySuffix, "ABCDE", 5);
  std::memcpy(picture.filePrefix, "IMG_", 4);
  picture.directoryNumber = 100;
  picture.fileNumber = 7;
  picture.hasJpg = 1;
  picture.has128 = 9;
  return picture;
}

TEST(PictureTest, NamesFollowTheCamerasRule) {
  EXPECT_EQ(PictureFolder(Example()), "100ABCDE");
  EXPECT_EQ(PictureStem(Example()), "IMG_0007");
  EXPECT_EQ(PictureFileName(Example(), 2), "IMG_0007.RAW");
  EXPECT_EQ(PicturePath(Example(), 1), "I:\\DCIM\\100ABCDE\\IMG_0007.JPG");
}

TEST(PictureTest, TypesAreThoseThatThePictureHas) {
  EXPECT_THAT(FileTypes(Example()), ElementsAre(1, 4));
  EXPECT_EQ(FileTypeName(4), "128");
  EXPECT_EQ(FileTypeName(5), "");
}

TEST(PictureTest, NamesWithoutAnEndStopAtTheirField) {
  DcfObj picture = Example();
  std::memset(picture.directorySuffix, 'D', sizeof picture.directorySuffix);
  std::memset(picture.filePrefix, 'F', sizeof picture.filePrefix);
  EXPECT_EQ(PictureFolder(picture), "100DDDDDDDD");
  EXPECT_EQ(PictureStem(picture), "FFFFFFFF0007");
}

TEST(PictureTest, AKeyIsTakenOnlyWhenItLooksLikeOne) {
  DcfObj picture = Example();
  EXPECT_EQ(PictureKey(picture), std::nullopt);
  std::memcpy(picture.block7, "A9993E364706816ABA3E25717850C26C9CD0D89D", 40);
  EXPECT_EQ(PictureKey(picture), "a9993e364706816aba3e25717850c26c9cd0d89d");
  picture.block7[40] = 'x';
  EXPECT_EQ(PictureKey(picture), std::nullopt);
}

TEST(PictureTest, ATimeIsTakenOnlyWhenItLooksLikeOne) {
  DcfObj picture = Example();
  EXPECT_EQ(PictureTime(picture), std::nullopt);
  std::memcpy(picture.block8, "2026-03-14 15:09:26", 19);
  EXPECT_EQ(PictureTime(picture), "2026-03-14 15:09:26");
  picture.block8[4] = '/';
  EXPECT_EQ(PictureTime(picture), std::nullopt);
}

TEST(PictureTest, WithoutAKeyTheWholeRecordTellsPicturesApart) {
  DcfObj one = Example();
  DcfObj other = Example();
  EXPECT_EQ(PictureFingerprint(one), PictureFingerprint(other));
  other.value9 = 1;
  EXPECT_NE(PictureFingerprint(one), PictureFingerprint(other));
  one.hasRaw = 1;
  one.value9 = 1;
  EXPECT_EQ(PictureFingerprint(one), PictureFingerprint(other));
}

}  // namespace
}  // namespace apps
