#include "apps/mount/ShownFolder.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

constexpr int kFolder = kelva::kAttributeDirectory;

TEST(ShownFolderTest, NamesThatAreNotSafeAreWrittenAsSyncWritesThem) {
  const ShownFolder folder(
      {{"a/b", 3, 0}, {"..", 0, kFolder}, {"KELVA", 0, kelva::kAttributeVolumeLabel}, {".x", 1, 0}});
  ASSERT_EQ(folder.Entries().size(), 2U);
  ASSERT_NE(folder.Find("a%2Fb"), nullptr);
  EXPECT_EQ(folder.Find("a%2Fb")->name, "a/b");
  EXPECT_EQ(folder.Find("a%2Fb")->size, 3U);
  EXPECT_NE(folder.Find("%2Ex"), nullptr);
}

TEST(ShownFolderTest, AnotherCaseFindsTheFileUnlessTheExactNameIsThere) {
  const ShownFolder folder({{"IMG.JPG", 1, 0}, {"b", 2, 0}, {"B", 3, 0}});
  ASSERT_NE(folder.Find("img.jpg"), nullptr);
  EXPECT_EQ(folder.Find("img.jpg")->name, "IMG.JPG");
  EXPECT_EQ(folder.Find("b")->size, 2U);
  EXPECT_EQ(folder.Find("B")->size, 3U);
  EXPECT_EQ(folder.Find("c"), nullptr);
  EXPECT_EQ(folder.Find("A"), nullptr);
}

TEST(ShownFolderTest, TheSecondOfTwoEqualNamesIsLeftOut) {
  const ShownFolder folder({{"x", 1, 0}, {"x", 2, 0}});
  ASSERT_EQ(folder.Entries().size(), 1U);
  EXPECT_EQ(folder.Entries()[0].size, 1U);
}

TEST(ShownFolderTest, SizesOfMoreThanTwoGibibytesArePositive) {
  const ShownFolder folder({{"long.mp4", -1, 0}});
  EXPECT_EQ(folder.Find("long.mp4")->size, 0xFFFFFFFFU);
}

TEST(ShownFolderTest, FilesOfOneNameBelongToItsJpegFile) {
  const ShownFolder folder({{"A.128", 1, 0},
                            {"A.JPG", 2, 0},
                            {"a.raw", 3, 0},
                            {"B.RAW", 4, 0},
                            {"C", 5, 0},
                            {"c.jpg", 6, 0},
                            {"D.JPG", 0, kFolder},
                            {"D.TXT", 7, 0},
                            {"A.B.JPG", 8, 0}});
  const auto jpegOf = [&](const char* name) { return folder.JpegOf(*folder.Find(name)); };
  for (const char* name : {"A.128", "A.JPG", "a.raw"}) EXPECT_EQ(jpegOf(name), folder.Find("A.JPG")) << name;
  EXPECT_EQ(jpegOf("C"), folder.Find("c.jpg"));
  EXPECT_EQ(jpegOf("A.B.JPG"), folder.Find("A.B.JPG"));
  for (const char* name : {"B.RAW", "D.JPG", "D.TXT"}) EXPECT_EQ(jpegOf(name), nullptr) << name;
  EXPECT_EQ(folder.Jpegs(), 3U);
}

}  // namespace
}  // namespace apps
