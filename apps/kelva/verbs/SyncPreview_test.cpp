#include "apps/kelva/verbs/SyncPreview.h"

#include <gmock/gmock.h>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using SyncPreviewTest = VerbTest;

TEST_F(SyncPreviewTest, ShowsNamesSizesAndTotalsAndFetchesNothing) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  Put("DCIM/101ABCDE/IMG_0001.JPG", "other");
  const std::string target = (folder / "out").string();
  EXPECT_THAT(Run({"sync", target.c_str(), "-n", "--pattern", "{name}"}).out,
              testing::MatchesRegex("I:/DCIM/100ABCDE/IMG_0001.JPG  ->  IMG_0001.JPG  3 B\n"
                                    "I:/DCIM/101ABCDE/IMG_0001.JPG  ->  IMG_0001-2.JPG  5 B\n"
                                    "\n"
                                    "\\.: 2 files \\(8 B\\)\n"
                                    "To fetch: 2 files \\(8 B\\); 0 known before; [0-9.]+ .?B free\\.\n"));
  EXPECT_FALSE(std::filesystem::exists(target));
}

TEST_F(SyncPreviewTest, ANameIsPrintedAsAShellTakesItBack) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  const std::string target = (folder / "out").string();
  EXPECT_THAT(Run({"sync", target.c_str(), "-n", "--pattern", "My pictures/{name}"}).out,
              testing::StartsWith("I:/DCIM/100ABCDE/IMG_0001.JPG  ->  'My pictures/IMG_0001.JPG'  3 B\n"));
}

TEST_F(SyncPreviewTest, ShowsWhatWouldBeDeletedOnTheCameraAndDeletesNothing) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  const std::string target = (folder / "out").string();
  EXPECT_EQ(Run({"sync", target.c_str()}).code, ExitCode::kDone);
  Put("DCIM/100ABCDE/IMG_0002.JPG", "other");
  const Ran text = Run({"sync", target.c_str(), "-n", "--delete-after-verify"});
  EXPECT_THAT(text.out, testing::MatchesRegex("I:/DCIM/100ABCDE/IMG_0002.JPG  ->  100ABCDE/IMG_0002.JPG  5 B\n"
                                              "I:/DCIM/100ABCDE/IMG_0001.JPG  would be deleted on the camera\n"
                                              "I:/DCIM/100ABCDE/IMG_0002.JPG  would be deleted on the camera\n"
                                              "\n"
                                              "100ABCDE: 1 file \\(5 B\\)\n"
                                              "To fetch: 1 file \\(5 B\\); 1 known before; [0-9.]+ .?B free\\.\n"
                                              "To delete on the camera: 2 files \\(8 B\\)\\.\n"));
  EXPECT_EQ(text.err, "kelva: Nothing was fetched or deleted.\n");
  EXPECT_THAT(Run({"sync", target.c_str(), "-n", "--delete-after-verify", "--json"}).out,
              testing::AllOf(
                  testing::HasSubstr(R"("event":"would_delete","path":"I:\\DCIM\\100ABCDE\\IMG_0001.JPG","size":3})"),
                  testing::HasSubstr(R"("to_delete":2,)")));
  EXPECT_TRUE(Has("DCIM/100ABCDE/IMG_0001.JPG"));
  EXPECT_THAT(Run({"sync", target.c_str(), "-n"}).out, testing::Not(testing::HasSubstr("delete")));
}

TEST_F(SyncPreviewTest, CountsEachFolder) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  Put("DCIM/101ABCDE/IMG_0001.JPG", "other");
  Put("DCIM/101ABCDE/IMG_0002.JPG", "third");
  const std::string target = (folder / "out").string();
  const std::string out = Run({"sync", target.c_str(), "-n"}).out;
  EXPECT_THAT(out, testing::HasSubstr("\n100ABCDE: 1 file (3 B)\n101ABCDE: 2 files (10 B)\n"));
  EXPECT_THAT(Run({"sync", target.c_str(), "-n", "--json"}).out,
              testing::HasSubstr(
                  R"("new":3,"known":0,"bytes":13,"unlisted":0,"folders":[{"folder":"100ABCDE","files":1,)"
                  R"("bytes":3},{"folder":"101ABCDE","files":2,"bytes":10}],"others":0,"others_bytes":0,"free":)"));
}

}  // namespace
}  // namespace apps
