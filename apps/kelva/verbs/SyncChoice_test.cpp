#include "apps/import/SyncChoice.h"

#include <gmock/gmock.h>

#include <chrono>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using SyncChoiceTest = VerbTest;

TEST_F(SyncChoiceTest, ByIsAPatternAndGoesWithNoOther) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  const std::string target = (folder / "out").string();
  EXPECT_THAT(Run({"sync", target.c_str(), "-n", "--by", "month"}).out,
              testing::ContainsRegex("I:/DCIM/100ABCDE/IMG_0001.JPG  ->  [0-9]+/[0-9]+/IMG_0001.JPG  3 B\n"));
  const Ran both = Run({"sync", target.c_str(), "-n", "--by", "month", "--pattern", "{name}"});
  EXPECT_EQ(both.code, ExitCode::kUsage);
  EXPECT_EQ(both.err, "kelva: Use --by or --pattern, not both.\n");
  const Ran week = Run({"sync", target.c_str(), "-n", "--by", "week"});
  EXPECT_EQ(week.code, ExitCode::kUsage);
  EXPECT_EQ(week.err, "kelva: --by takes day, month or year, not \"week\".\n");
}

TEST_F(SyncChoiceTest, APatternThatEndsWithASlashIsAFolder) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  const std::string target = (folder / "out").string();
  EXPECT_THAT(Run({"sync", target.c_str(), "-n", "--pattern", "mine/"}).out,
              testing::HasSubstr("I:/DCIM/100ABCDE/IMG_0001.JPG  ->  mine/IMG_0001.JPG  3 B\n"));
  EXPECT_EQ(Run({"sync", target.c_str(), "-n", "--pattern", "mine"}).code, ExitCode::kUsage);
}

TEST_F(SyncChoiceTest, AFolderIsChosenAndTheRestIsNoOtherFile) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  Put("DCIM/101ABCDE/IMG_0001.JPG", "other");
  const std::string target = (folder / "out").string();
  EXPECT_THAT(Run({"sync", target.c_str(), "--folder", "101*"}).out, testing::StartsWith("1 stored (5 B)"));
  EXPECT_FALSE(std::filesystem::exists(target + "/100ABCDE"));
  EXPECT_THAT(Run({"sync", target.c_str(), "--json"}).out, testing::HasSubstr("\"known\":1,\"others\":0"));
  Put("DCIM/100ABCDE/MVI_0001.MP4", "video");
  Put("DCIM/101ABCDE/MVI_0001.MP4", "a video");
  EXPECT_THAT(Run({"sync", target.c_str(), "--folder", "101*", "--everything", "--json"}).out,
              testing::HasSubstr("\"known\":1,\"others\":0"));
  EXPECT_EQ(Text(target + "/101ABCDE/MVI_0001.MP4"), "a video");
  EXPECT_FALSE(std::filesystem::exists(target + "/100ABCDE/MVI_0001.MP4"));
}

TEST_F(SyncChoiceTest, PicturesFromBeforeADateAreLeftOut) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  Put("DCIM/100ABCDE/IMG_0002.JPG", "two");
  std::filesystem::last_write_time(storage / "DCIM/100ABCDE/IMG_0001.JPG",
                                   std::filesystem::file_time_type::clock::now() - std::chrono::hours(72));
  const std::string target = (folder / "out").string();
  EXPECT_THAT(Run({"sync", target.c_str(), "--since", "2d"}).out, testing::StartsWith("1 stored (3 B)"));
  EXPECT_TRUE(std::filesystem::exists(target + "/100ABCDE/IMG_0002.JPG"));
  EXPECT_THAT(Run({"sync", target.c_str(), "--since", "4d"}).out, testing::StartsWith("1 stored (3 B)"));
  Put("DCIM/100ABCDE/MVI_0001.MP4", "video");
  EXPECT_EQ(Run({"sync", target.c_str(), "--since", "4d", "--everything"}).out,
            "0 stored (0 B), 2 known before, 0 failed\n"
            "1 other file (5 B) below DCIM and MISC has no date and was not fetched; leave --since out to fetch it.\n");
}

}  // namespace
}  // namespace apps
