#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using PictureVerbsTest = VerbTest;

TEST_F(PictureVerbsTest, PicturesAreListedAndDeletedWithAllTheirFiles) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  Put("DCIM/100ABCDE/IMG_0001.RAW", "raw");
  EXPECT_NE(Run({"pictures"}).out.find("100ABCDE/IMG_0001  JPG RAW  "), std::string::npos);
  EXPECT_EQ(Run({"pictures", "rm", "IMG_0001"}).code, ExitCode::kDone);
  EXPECT_FALSE(Has("DCIM/100ABCDE/IMG_0001.JPG"));
  EXPECT_FALSE(Has("DCIM/100ABCDE/IMG_0001.RAW"));
  EXPECT_EQ(Run({"pictures", "rm", "IMG_0001"}).code, ExitCode::kFailed);
}

TEST_F(PictureVerbsTest, APictureIsNamedByItsFileAndSeveralByAPattern) {
  for (const char* name : {"IMG_0001.JPG", "IMG_0002.JPG", "IMG_0103.JPG", "IMG_0103.RAW"}) {
    Put(std::string("DCIM/100ABCDE/") + name, "one");
  }
  EXPECT_EQ(Run({"pictures", "rm", "-n", "img_00*"}).out, "100ABCDE/IMG_0001  JPG\n100ABCDE/IMG_0002  JPG\n");
  EXPECT_TRUE(Has("DCIM/100ABCDE/IMG_0001.JPG"));
  EXPECT_EQ(Run({"pictures", "rm", "*.MP4"}).code, ExitCode::kFailed) << "no picture has such a file";
  EXPECT_EQ(Run({"pictures", "rm", "-n", "*.RAW"}).out, "100ABCDE/IMG_0103  JPG RAW\n");
  EXPECT_EQ(Run({"pictures", "rm", "-n", "IMG_0001.RAW"}).code, ExitCode::kFailed);
  EXPECT_EQ(Run({"pictures", "rm", "-n", "IMG_0001", "*_0001.JPG"}).out, "100ABCDE/IMG_0001  JPG\n") << "once";
  EXPECT_TRUE(Has("DCIM/100ABCDE/IMG_0001.JPG"));
  EXPECT_EQ(Run({"pictures", "rm", "img_00*", "NOPE*"}).code, ExitCode::kPartial);
  EXPECT_FALSE(Has("DCIM/100ABCDE/IMG_0001.JPG"));
  EXPECT_FALSE(Has("DCIM/100ABCDE/IMG_0002.JPG"));
  EXPECT_EQ(Run({"pictures", "rm", "img_0103.jpg"}).code, ExitCode::kDone);
  EXPECT_FALSE(Has("DCIM/100ABCDE/IMG_0103.RAW"));
}

}  // namespace
}  // namespace apps
