#include "apps/kelva/verbs/SyncChoice.h"

#include <gmock/gmock.h>

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

}  // namespace
}  // namespace apps
