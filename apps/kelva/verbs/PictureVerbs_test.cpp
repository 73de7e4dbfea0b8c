#include <gmock/gmock.h>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

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

TEST_F(PictureVerbsTest, SizesAndTotalsAreShown) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  Put("DCIM/100ABCDE/IMG_0001.RAW", "rawraw");
  Put("DCIM/101ABCDE/IMG_0002.JPG", std::string(1500, 'x'));
  const Ran text = Run({"pictures"});
  EXPECT_THAT(text.out, HasSubstr("PICTURE            FILES      SIZE  TIME\n100ABCDE/IMG_0001  JPG RAW     9 B  2"));
  EXPECT_THAT(text.out, HasSubstr("101ABCDE/IMG_0002  JPG      1.5 kB  2"));
  EXPECT_THAT(text.out, EndsWith("\n2 pictures, 3 files, 1.5 kB\n"));
  const Ran json = Run({"pictures", "--json"});
  EXPECT_THAT(json.out, HasSubstr("\"size\":9,\"sizes\":[3,6]}"));
  EXPECT_THAT(json.out, EndsWith("\"size\":1500,\"sizes\":[1500]}],\"files\":3,\"bytes\":1509,\"unlisted\":0}\n"));
}

TEST_F(PictureVerbsTest, TheListMayBeOfAFolderOrSinceADay) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  Put("DCIM/101ABCDE/IMG_0002.JPG", "two");
  EXPECT_THAT(Run({"pictures", "--folder", "101*"}).out, EndsWith("\n1 picture, 1 file, 3 B\n"));
  EXPECT_THAT(Run({"pictures", "--since", "2000"}).out, EndsWith("\n2 pictures, 2 files, 6 B\n"));
  const Ran none = Run({"pictures", "--since", "9999-12-31"});
  EXPECT_EQ(none.code, ExitCode::kDone);
  EXPECT_EQ(none.out, "");
  EXPECT_THAT(none.err, HasSubstr("No picture of the camera's catalogue is what --since and --folder ask for."));
  EXPECT_EQ(Run({"pictures", "--since", "last week"}).code, ExitCode::kUsage);
  const std::string sheet = (folder / "sheet.html").string();
  EXPECT_EQ(Run({"pictures", "--sheet", sheet.c_str(), "--folder", "101*"}).code, ExitCode::kUsage);
}

TEST_F(PictureVerbsTest, APictureIsNamedByItsFileAndSeveralByAPattern) {
  for (const char* name : {"IMG_0001.JPG", "IMG_0002.JPG", "IMG_0103.JPG", "IMG_0103.RAW"}) {
    Put(std::string("DCIM/100ABCDE/") + name, "one");
  }
  EXPECT_EQ(Run({"pictures", "rm", "-n", "img_00*"}).out, "100ABCDE/IMG_0001  JPG\n100ABCDE/IMG_0002  JPG\n");
  EXPECT_TRUE(Has("DCIM/100ABCDE/IMG_0001.JPG"));
  EXPECT_EQ(Run({"pictures", "rm", "*.MP4"}).code, ExitCode::kFailed) << "no picture has such a file";
  EXPECT_EQ(Run({"pictures", "rm", "-n", "img_00*"}).err, "kelva: 2 pictures would be deleted; nothing was.\n");
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
