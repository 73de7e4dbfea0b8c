#include <gmock/gmock.h>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using testing::HasSubstr;

using CaptureVerbTest = VerbTest;

TEST_F(CaptureVerbTest, ANewPictureIsFetched) {
  Put("DCIM/100KELVA/IMG_0001.JPG", "old");
  const std::string into = (folder / "made/here").string();
  const Ran ran = Run({"capture", "--into", into.c_str()});
  EXPECT_EQ(ran.code, ExitCode::kDone) << ran.err;
  EXPECT_EQ(ran.out, into + "/IMG_0002.JPG\n");
  EXPECT_EQ(Text(into + "/IMG_0002.JPG"), Text(storage / "DCIM/100KELVA/IMG_0002.JPG"));
  EXPECT_FALSE(std::filesystem::exists(into + "/IMG_0001.JPG"));
}

TEST_F(CaptureVerbTest, AFileOfThatNameIsKept) {
  Put("../IMG_0001.JPG", "mine");
  const std::string into = folder.string();
  const Ran ran = Run({"capture", "--into", into.c_str(), "--json"});
  EXPECT_EQ(ran.code, ExitCode::kFailed);
  EXPECT_THAT(ran.out, HasSubstr("\"failed\":1"));
  EXPECT_THAT(ran.err, HasSubstr("and it was kept"));
  EXPECT_EQ(Text(folder / "IMG_0001.JPG"), "mine");
  EXPECT_TRUE(Has("DCIM/100KELVA/IMG_0001.JPG"));
}

TEST_F(CaptureVerbTest, NoPictureIsTakenForAFolderThatCannotBe) {
  Put("../file", "");
  const std::string into = (folder / "file/folder").string();
  EXPECT_EQ(Run({"capture", "--into", into.c_str()}).code, ExitCode::kFailed);
  EXPECT_FALSE(Has("DCIM"));
}

TEST_F(CaptureVerbTest, NoPictureIsTakenForAFolderThatTakesNoFile) {
  EXPECT_EQ(Run({"capture", "--into", "/proc"}).code, ExitCode::kFailed);
  EXPECT_FALSE(Has("DCIM"));
}

TEST_F(CaptureVerbTest, WithoutAFolderThePictureStaysOnTheCamera) {
  EXPECT_EQ(Run({"capture"}).code, ExitCode::kDone);
  EXPECT_TRUE(Has("DCIM/100KELVA/IMG_0001.JPG"));
}

}  // namespace
}  // namespace apps
