#include "apps/import/SyncSummary.h"

#include <gmock/gmock.h>

#include <fstream>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using testing::HasSubstr;

class SyncSummaryTest : public VerbTest {
 protected:
  const std::string target = (folder / "out").string();
};

TEST_F(SyncSummaryTest, CountsWhatWasStoredAndWhatWasKnown) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  EXPECT_THAT(Run({"sync", target.c_str()}).out, HasSubstr("1 stored (3 B), 0 known before, 0 failed\n"));
  EXPECT_EQ(Run({"sync", target.c_str()}).out, "0 stored (0 B), 1 known before, 0 failed\n");
}

TEST_F(SyncSummaryTest, SaysWhatWasHereAlready) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  Run({"sync", target.c_str()});
  std::filesystem::remove(target + "/.kelva-manifest.sqlite");
  EXPECT_THAT(Run({"sync", target.c_str()}).out,
              HasSubstr("\n1 of the stored was here already, with the same content.\n"));
}

TEST_F(SyncSummaryTest, SaysHowFilesWereChecked) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  Put("DCIM/100ABCDE/IMG_0001.RAW", "raw data");
  EXPECT_THAT(Run({"sync", target.c_str()}).out, HasSubstr("\nChecked: 1 against a SHA-1, 1 by their size alone.\n"));
  const std::string again = (folder / "again").string();
  EXPECT_THAT(
      Run({"sync", again.c_str(), "--verify", "--json"}).out,
      HasSubstr(
          R"("checked":1,"read_twice":2,"size_only":0,"unlike_key":0,"numbered":0,"undated":0,"resumed":0,"known":0,"others":0,)"
          R"("others_bytes":0,"failed":0,"left":0,"deleted":0,"to_delete":0)"));
}

TEST_F(SyncSummaryTest, CountsNamesThatWereTakenAndNamesThemWhenAsked) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  std::filesystem::create_directories(target + "/100ABCDE");
  std::ofstream(target + "/100ABCDE/IMG_0001.JPG") << "mine";
  const Ran ran = Run({"sync", "--verbose", target.c_str()});
  EXPECT_THAT(ran.out, HasSubstr("\n1 got a number because its name was taken (--verbose names them).\n"));
  EXPECT_THAT(ran.err,
              HasSubstr("kelva: I:/DCIM/100ABCDE/IMG_0001.JPG is 100ABCDE/IMG_0001-2.JPG, because its name was "
                        "taken.\n"));
}

TEST_F(SyncSummaryTest, WhatIsHereAlreadyGotNoNumber) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  std::filesystem::create_directories(target + "/100ABCDE");
  std::ofstream(target + "/100ABCDE/IMG_0001.JPG") << "one";
  EXPECT_THAT(Run({"sync", "--json", target.c_str()}).out, HasSubstr(R"("already_here":1,)"));
}

TEST(SyncInWordsTest, OneFileIsNotSaidInThePlural) {
  EXPECT_THAT(SyncInWords({.undated = 1}, false, false),
              HasSubstr("\n1 without a date has the time of its fetching.\n"));
  EXPECT_THAT(SyncInWords({.undated = 2}, false, false),
              HasSubstr("\n2 without a date have the time of their fetching.\n"));
  EXPECT_EQ(SyncSoFar({.expected = 1, .stored = 1}, Json::Object()).words,
            "1 of 1 file stored, 0 deleted on the camera; the same command goes on");
}

TEST(SyncSoFarTest, SaysWhatIsStoredAndWhatIsLeft) {
  const SoFar::Done done = SyncSoFar({.known = 4, .expected = 3203, .stored = 985, .bytes = 9, .deleted = 1},
                                     Json::Object().Set("serial", "K1"));
  EXPECT_EQ(done.words, "985 of 3203 files stored, 1 deleted on the camera; the same command goes on");
  EXPECT_EQ(
      done.members.Text(),
      R"({"serial":"K1","stored":985,"bytes":9,"already_here":0,"checked":0,"read_twice":0,"size_only":0,)"
      R"("unlike_key":0,"numbered":0,"undated":0,"resumed":0,"known":4,"others":0,"others_bytes":0,"failed":0,"left":2218,"deleted":1,"to_delete":0})");
  EXPECT_EQ(SyncSoFar({.known = 20, .deleted = 15, .toDelete = 17}, Json::Object()).words,
            "15 of 17 deleted on the camera; the same command goes on");
  EXPECT_EQ(SyncSoFar({.known = 4}, Json::Object()).words, "nothing was stored yet; the same command starts again");
}

}  // namespace
}  // namespace apps
