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

}  // namespace
}  // namespace apps
