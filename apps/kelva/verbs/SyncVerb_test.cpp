#include <gmock/gmock.h>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using SyncVerbTest = VerbTest;
using testing::HasSubstr;
using testing::Not;

TEST_F(SyncVerbTest, SyncFetchesWhatIsNewAndNothingTwice) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  Put("DCIM/101ABCDE/IMG_0001.JPG", "other");
  const std::string target = (folder / "out").string();
  EXPECT_EQ(Run({"sync", target.c_str()}).out,
            "2 stored (8 B), 0 known before, 0 failed\nChecked: 2 against a SHA-1.\n");
  EXPECT_EQ(Text(folder / "out/101ABCDE/IMG_0001.JPG"), "other");
  std::filesystem::rename(folder / "out/100ABCDE/IMG_0001.JPG", folder / "out/mine.jpg");
  EXPECT_EQ(Run({"sync", target.c_str()}).out, "0 stored (0 B), 2 known before, 0 failed\n");
  EXPECT_FALSE(std::filesystem::exists(folder / "out/100ABCDE/IMG_0001.JPG"));
}

TEST_F(SyncVerbTest, AFolderThatTheCameraDoesNotHaveIsSaid) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  const std::string target = (folder / "out").string();
  const auto none = Run({"sync", "--folder", "999*", target.c_str()});
  EXPECT_EQ(none.out, "0 stored (0 B), 0 known before, 0 failed\n");
  EXPECT_THAT(none.err, HasSubstr("No folder of the camera's pictures is named 999*."));
  EXPECT_THAT(Run({"sync", "--folder", "100*", target.c_str()}).err, Not(HasSubstr("No folder")));
}

}  // namespace
}  // namespace apps
