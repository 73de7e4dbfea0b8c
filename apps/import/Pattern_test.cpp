#include "apps/import/Pattern.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "apps/commandline/Failure.h"

namespace apps {
namespace {

DcfObj Example(const char* suffix = "ABCDE", const char* prefix = "IMG_") {
  DcfObj picture{};
  std::strncpy(picture.directorySuffix, suffix, sizeof picture.directorySuffix - 1);
  std::strncpy(picture.filePrefix, prefix, sizeof picture.filePrefix - 1);
  picture.directoryNumber = 100;
  picture.fileNumber = 7;
  std::memcpy(picture.block8, "2026-03-14 15:09:26", 19);
  return picture;
}

std::string Named(const char* pattern, const DcfObj& picture, int type = 1, const std::string& serial = "K1") {
  return Pattern(pattern).Apply(picture, type, serial, CatalogueTaken(picture)).Text();
}

TEST(PatternTest, TheDefaultKeepsTheCamerasFolders) {
  EXPECT_EQ(Named("{folder}/{name}", Example()), "100ABCDE/IMG_0007.JPG");
}

TEST(PatternTest, EveryTokenHasItsValue) {
  EXPECT_EQ(Named("{serial}/{year}-{month}-{day}/{date}_{time}_{stem}_{number}.{ext}", Example(), 2),
            "K1/2026-03-14/2026-03-14_150926_IMG_0007_7.RAW");
}

TEST(PatternTest, WithoutATimeTheDateSaysSo) {
  DcfObj picture = Example();
  picture.block8[0] = 'x';
  EXPECT_EQ(Named("{year}/{name}", picture), "undated/IMG_0007.JPG");
}

TEST(PatternTest, TheDateIsMissingOnceAndNotInEachFolder) {
  DcfObj picture = Example();
  picture.block8[0] = 'x';
  EXPECT_EQ(Named("{year}/{month}/{day}/{name}", picture), "undated/IMG_0007.JPG");
  EXPECT_EQ(Named("{year}/{serial}/{day}/{name}", picture), "undated/K1/undated/IMG_0007.JPG");
}

TEST(PatternTest, ASlashAtTheEndMeansAFolder) {
  EXPECT_EQ(Named("{year}/{month}/", Example()), "2026/03/IMG_0007.JPG");
  EXPECT_EQ(Named("all/", Example(), 2), "all/IMG_0007.RAW");
}

TEST(PatternTest, ThereIsAPatternForDaysMonthsAndYears) {
  EXPECT_EQ(Named(Pattern::By("day").data(), Example()), "2026/03/14/IMG_0007.JPG");
  EXPECT_EQ(Named(Pattern::By("month").data(), Example()), "2026/03/IMG_0007.JPG");
  EXPECT_EQ(Named(Pattern::By("year").data(), Example()), "2026/IMG_0007.JPG");
  EXPECT_THROW(Pattern::By("week"), Failure);
}

TEST(PatternTest, NoByteOfACameraAddsAFolderOrLeavesOne) {
  EXPECT_EQ(Named("{folder}/{name}", Example("/../x", "../a")), "100%2F..%2Fx/%2E.%2Fa0007.JPG");
  EXPECT_EQ(Named("{serial}/{name}", Example(), 1, ".."), "%2E./IMG_0007.JPG");
  EXPECT_EQ(Named("{serial}/{name}", Example(), 1, ""), "%/IMG_0007.JPG");
}

TEST(PatternTest, WhatIsNoRuleIsRefused) {
  for (const char* bad : {"", "all", "{stem}", "{name}/{stem}", "{date}.{ext}", "/abs/{name}", "../{name}", "a//{name}",
                          "/", "a//", "{nope}", "{name", "./{name}", ".x/{name}"}) {
    EXPECT_THROW(Pattern{bad}, Failure) << bad;
  }
}

TEST(PatternTest, WhatIsWrongWithAPatternIsSaid) {
  const auto why = [](const char* pattern) {
    try {
      const Pattern read(pattern);
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.Code(), ExitCode::kUsage);
      return std::string(failure.what());
    }
    return std::string();
  };
  EXPECT_EQ(
      why("{year}/{nope}"),
      "The pattern \"{year}/{nope}\" has a token that is not known; there are {folder} {name} {stem} {ext} {number} "
      "{serial} {date} {year} {month} {day} {time}.");
  EXPECT_EQ(why("../{name}"), "The pattern \"../{name}\" leads out of the folder.");
  EXPECT_EQ(why("a//b"), "The pattern \"a//b\" has an empty part; it is relative to the folder and ends with a name.");
  EXPECT_EQ(
      why("{year}/{month}"),
      "The pattern \"{year}/{month}\" does not name the files: its last part needs {name}, or {stem} and {ext}, as in "
      "\"{year}/{month}/{name}\".");
  EXPECT_THAT(why("{date}_{stem}"), testing::HasSubstr("as in \"{date}_{stem}.{ext}\"."));
  EXPECT_THAT(why("{date}_{time}.{ext}"), testing::HasSubstr("as in \"{date}_{time}_{stem}.{ext}\"."));
  EXPECT_EQ(why(".a/b"), "The pattern \".a/b\" has a part that begins with a dot; such files are hidden.");
}

}  // namespace
}  // namespace apps
