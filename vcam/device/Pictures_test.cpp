#include "vcam/device/Pictures.h"

#include <gmock/gmock.h>

#include "vcam/camera/testing/TestSupport.h"

namespace vcam {
namespace {

TEST(Pictures, TakeDirectoryNamesApart) {
  const auto directory = ParseDirectoryName("100ABCDE");
  ASSERT_TRUE(directory);
  EXPECT_EQ(directory->number, 100);
  EXPECT_EQ(directory->suffix, "ABCDE");
  for (const char* name : {"", "10", "099ABCDE", "ABCDE100", "100ABCDEFGH", "1x0ABCDE"}) {
    EXPECT_FALSE(ParseDirectoryName(name)) << name;
  }
}

TEST(Pictures, TakeFileNamesApart) {
  const auto file = ParseFileName("IMG_0012.RAW");
  ASSERT_TRUE(file);
  EXPECT_EQ(file->prefix, "IMG_");
  EXPECT_EQ(file->number, 12);
  EXPECT_EQ(file->type, 1U);
  for (const char* name :
       {"", ".JPG", "IMG_12.JPG", "IMG_0012.jpg", "IMG_0012.GIF", "IMG_0012JPG", "PREFIXES0012.JPG"}) {
    EXPECT_FALSE(ParseFileName(name)) << name;
  }
}

TEST(Pictures, HaveNamesUpToTheLongestThatARecordHolds) {
  EXPECT_EQ(ParseDirectoryName("999").value().suffix, "");
  EXPECT_EQ(ParseDirectoryName("100ABCDEFG").value().suffix, "ABCDEFG");
  EXPECT_EQ(ParseFileName("0012.JPG").value().prefix, "");
  EXPECT_EQ(ParseFileName("PREFIX_0012.JPG").value().prefix, "PREFIX_");
  EXPECT_EQ(ParseFileName("9999.128").value().number, 9999);
}

TEST(Pictures, GatherTheFilesOfOneNumber) {
  const test::ScratchStorage scratch;
  for (const char* name :
       {"DCIM/100ABCDE/IMG_0001.JPG", "DCIM/100ABCDE/IMG_0001.RAW", "DCIM/100ABCDE/IMG_0002.128",
        "DCIM/101ABCDE/IMG_0001.TXT", "DCIM/100ABCDE/readme", "DCIM/other/IMG_0001.JPG", "DCIM/IMG_0001.JPG"}) {
    scratch.Put(name, "x");
  }
  const auto pictures = FindPictures(Storage(scratch.Path()));
  ASSERT_EQ(pictures.size(), 3U);
  EXPECT_EQ(pictures[0].PathOf(0), "DCIM/100ABCDE/IMG_0001.JPG");
  EXPECT_TRUE(pictures[0].files[0] && pictures[0].files[1] && !pictures[0].files[2] && !pictures[0].files[3]);
  EXPECT_EQ(pictures[1].number, 2);
  EXPECT_TRUE(pictures[1].files[3]);
  EXPECT_EQ(pictures[2].directory.number, 101);
}

TEST(Pictures, AreNoneWithoutADcimFolder) {
  const test::ScratchStorage scratch;
  EXPECT_TRUE(FindPictures(Storage(scratch.Path())).empty());
}

}  // namespace
}  // namespace vcam
