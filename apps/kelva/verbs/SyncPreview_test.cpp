#include "apps/kelva/verbs/SyncPreview.h"

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using SyncPreviewTest = VerbTest;

TEST_F(SyncPreviewTest, ShowsTheNamesThatWillBeUsedAndFetchesNothing) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  Put("DCIM/101ABCDE/IMG_0001.JPG", "other");
  const std::string target = (folder / "out").string();
  const Ran ran = Run({"sync", target.c_str(), "-n", "--pattern", "{name}"});
  EXPECT_EQ(ran.out,
            "I:/DCIM/100ABCDE/IMG_0001.JPG  ->  IMG_0001.JPG\n"
            "I:/DCIM/101ABCDE/IMG_0001.JPG  ->  IMG_0001-2.JPG\n");
  EXPECT_FALSE(std::filesystem::exists(target));
}

}  // namespace
}  // namespace apps
