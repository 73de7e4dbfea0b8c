#include "apps/import/Sync.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <new>
#include <thread>

#include "apps/files/Sha1.h"
#include "apps/files/testing/RecordingCalls.h"
#include "apps/import/testing/SyncFixture.h"

namespace apps {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST_F(SyncTest, NewFilesAreReadOnceAndKnownOnesNotAtAll) {
  EXPECT_EQ(Run().stored, 2U);
  EXPECT_EQ(camera_.reads, 2);
  EXPECT_EQ(Text("100ABCDE/IMG_0002.JPG"), "two");
  EXPECT_EQ(Run().stored, 0U);
  EXPECT_EQ(camera_.reads, 2);
}

TEST_F(SyncTest, AFileThatTheCatalogueNamesAndTheFolderDoesNotIsReportedAndTheRestGoesOn) {
  camera_.files.erase("IMG_0001.JPG");
  const SyncTotals totals = Run();
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(totals.stored, 1U);
}

TEST_F(SyncTest, AFileWithoutAKeyMustHaveTheSizeOfItsListing) {
  camera_.lie = 1;
  const SyncTotals totals = Run();
  EXPECT_EQ(totals.failed, 2U);
  EXPECT_EQ(totals.stored, 0U);
}

TEST_F(SyncTest, VerifyingReadsTwice) {
  EXPECT_EQ(Run({.verify = true}).stored, 2U);
  EXPECT_EQ(camera_.reads, 4);
}

TEST_F(SyncTest, AFileThatIsMissingIsNamedWithTheReason) {
  camera_.files.erase("IMG_0001.JPG");
  Run();
  EXPECT_THAT(Said(), testing::StartsWith("kelva: Cannot read I:/DCIM/100ABCDE/IMG_0001.JPG: "));
  EXPECT_THAT(Said(), HasSubstr("the catalogue names it, but it is not in its folder"));
}

TEST_F(SyncTest, AFileOfAnotherSizeIsNamedWithBothSizes) {
  camera_.lie = 1;
  Run();
  EXPECT_THAT(Said(), HasSubstr("the folder gives it 4 bytes, and the camera announces 3"));
}

TEST_F(SyncTest, AKeySaysMoreThanTheSizeOfAListing) {
  camera_.lie = 1;
  camera_.files["IMG_0001.JPG"] = "abc";
  EXPECT_EQ(Run({}, {Picture(1, "a9993e364706816aba3e25717850c26c9cd0d89d")}).stored, 1U);
}

TEST_F(SyncTest, AnEmptyFileIsStoredWhenItsFolderSaysSoToo) {
  camera_.files["IMG_0001.JPG"] = "";
  EXPECT_EQ(Run({}, {Picture(1)}).stored, 1U);
  EXPECT_TRUE(std::filesystem::exists(path_ + "/100ABCDE/IMG_0001.JPG"));
}

TEST_F(SyncTest, AFileThatNoFolderListsAndThatCanBeReadIsStored) {
  camera_.folder = "elsewhere";
  EXPECT_EQ(Run().stored, 2U);
}

TEST_F(SyncTest, TheTotalsCountBytesAndWhatWasHereAlready) {
  std::filesystem::create_directory(path_ + "/100ABCDE");
  std::ofstream(path_ + "/100ABCDE/IMG_0002.JPG") << "two";
  const SyncTotals totals = Run();
  EXPECT_EQ(totals.stored, 2U);
  EXPECT_EQ(totals.alreadyHere, 1U);
  EXPECT_EQ(totals.bytes, 6U);
}

TEST_F(SyncTest, TwoReadsThatDifferAreSaidAndNothingIsStored) {
  camera_.onRead = [&](const std::string&) { camera_.files["IMG_0001.JPG"] = camera_.reads == 1 ? "one" : "eno"; };
  const SyncTotals totals = Run({.verify = true}, {Picture(1)});
  EXPECT_EQ(totals.stored, 0U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(Said(),
            "kelva: Two reads of I:/DCIM/100ABCDE/IMG_0001.JPG differ, so it was not stored; check the cable and the "
            "card.\n");
}

TEST_F(SyncTest, AFileThatDoesNotFitIntoMemoryIsReportedAndTheRestGoesOn) {
  camera_.onRead = [&](const std::string&) {
    if (camera_.reads == 1) throw std::bad_alloc();
  };
  const SyncTotals totals = Run();
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(totals.stored, 1U);
  EXPECT_THAT(Said(), HasSubstr("IMG_0001.JPG: there is not enough memory"));
}

TEST_F(SyncTest, ACameraThatHasGoneEndsTheRunAndWhatCameBeforeIsKept) {
  camera_.onRead = [&](const std::string&) {
    if (camera_.reads == 2) throw Gone();
  };
  const Outcome outcome = RunToItsEnd(kVerifyAndDelete);
  EXPECT_EQ(outcome.code, ExitCode::kGone);
  EXPECT_THAT(outcome.sentence,
              testing::StartsWith("Cannot read I:/DCIM/100ABCDE/IMG_0001.JPG: the camera is no longer there"));
  EXPECT_EQ(camera_.reads, 2);
  EXPECT_EQ(Said(), "") << "the end of all is said by the caller";
}

TEST_F(SyncTest, WhatWasReadBeforeTheCameraWentIsStored) {
  camera_.onRead = [&](const std::string&) {
    if (camera_.reads == 2) throw Gone();
  };
  RunToItsEnd();
  EXPECT_EQ(Text("100ABCDE/IMG_0001.JPG"), "one");
  EXPECT_EQ(Plan({Picture(1), Picture(2)}).NewFiles(), 1U);
}

TEST_F(SyncTest, AFullDiskEndsTheRunWithItsSentence) {
  RecordingCalls calls(path_);
  calls.FailEach(1, 1 << 20, ENOSPC, "write ");
  const Outcome outcome = RunToItsEnd();
  EXPECT_EQ(outcome.code, ExitCode::kFailed);
  EXPECT_THAT(outcome.sentence, HasSubstr("make room there and try again"));
}

TEST_F(SyncTest, AFolderWithoutPermissionEndsTheRunBeforeItsFirstFileIsRead) {
  RecordingCalls calls(path_);
  calls.FailEach(1, 1 << 20, EACCES, "create 100ABCDE/");
  const Outcome outcome = RunToItsEnd();
  EXPECT_EQ(outcome.code, ExitCode::kFailed);
  EXPECT_THAT(outcome.sentence, HasSubstr("Permission denied"));
  EXPECT_EQ(camera_.reads, 0);
  EXPECT_EQ(Said(), "");
}

TEST_F(SyncTest, AStopBeforeAFileReadsNothingMore) {
  stop_.Request();
  EXPECT_THROW(Run(), Stopped);
  EXPECT_EQ(camera_.reads, 0);
}

TEST_F(SyncTest, AStopInTheMiddleOfAFileStoresNothingOfIt) {
  camera_.onRead = [&](const std::string&) { stop_.Request(); };
  EXPECT_THROW(Run(), Stopped);
  EXPECT_EQ(camera_.reads, 1);
  EXPECT_FALSE(std::filesystem::exists(path_ + "/100ABCDE/IMG_0001.JPG"));
}

TEST_F(SyncTest, EveryReadIsSentWithTheFlagOfATransfer) {
  Run();
  EXPECT_TRUE(camera_.lastFlag);
}

// What "two" and "eno" hash to is not this.
constexpr char kKeyOfAbc[] = "a9993e364706816aba3e25717850c26c9cd0d89d";

TEST_F(SyncTest, AFileThatIsNotWhatItsKeySaysIsStoredAfterTwoEqualReads) {
  const SyncTotals totals = Run({}, {Picture(1, kKeyOfAbc), Picture(2)});
  EXPECT_EQ(totals.stored, 2U);
  EXPECT_EQ(totals.unlikeKey, 1U);
  EXPECT_EQ(camera_.reads, 3);
  EXPECT_EQ(Text("100ABCDE/IMG_0001.JPG"), "one");
  EXPECT_TRUE(manifest_.Find(KeyOf(Picture(1, kKeyOfAbc), 1, "K1"))->verified);
}

TEST_F(SyncTest, AReadThatWentWrongIsMendedByTheNext) {
  camera_.files["IMG_0001.JPG"] = "abd";
  camera_.onRead = [&](const std::string&) {
    if (camera_.reads == 2) camera_.files["IMG_0001.JPG"] = "abc";
  };
  const SyncTotals totals = Run({}, {Picture(1, kKeyOfAbc)});
  EXPECT_EQ(totals.stored, 1U);
  EXPECT_EQ(totals.unlikeKey, 0U);
  EXPECT_EQ(Text("100ABCDE/IMG_0001.JPG"), "abc");
}

TEST_F(SyncTest, TwoReadsThatFitNeitherEachOtherNorTheKeyAreAnError) {
  camera_.onRead = [&](const std::string&) { camera_.files["IMG_0001.JPG"] = "on" + std::to_string(camera_.reads); };
  const SyncTotals totals = Run({}, {Picture(1, kKeyOfAbc)});
  EXPECT_EQ(totals.stored, 0U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(Said(),
            "kelva: What the camera sends of I:/DCIM/100ABCDE/IMG_0001.JPG differs from read to read, so it was not "
            "stored; check the cable and the card.\n");
}

TEST_F(SyncTest, AFileUnlikeItsKeyHasToHaveItsListedSize) {
  camera_.lie = 1;
  EXPECT_EQ(Run({}, {Picture(1, kKeyOfAbc)}).failed, 1U);
}

TEST_F(SyncJsonTest, AFileThatFailsIsAnEventOfItsOwn) {
  camera_.files.erase("IMG_0001.JPG");
  Run();
  const std::string events = Printed();
  EXPECT_THAT(
      events,
      HasSubstr(
          "\"event\":\"failed\",\"path\":\"I:\\\\DCIM\\\\100ABCDE\\\\IMG_0001.JPG\",\"reason\":\"failed\",\"error\":"));
  EXPECT_THAT(events, HasSubstr("\"event\":\"stored\",\"path\":\"I:\\\\DCIM\\\\100ABCDE\\\\IMG_0002.JPG\","));
  EXPECT_THAT(
      events,
      HasSubstr(
          "\"size\":3,\"sha1\":\"ad782ecdac770fc6eb9a62e44f90873fb97fb26b\",\"verified\":false,\"was_here\":false,"
          "\"numbered\":false}"));
}

TEST_F(SyncJsonTest, ProgressSaysThatASecondReadIsCompared) {
  Run();
  // Longer than a script waits for the next event.
  const auto due = Progress::Clock::now() + std::chrono::milliseconds(600);
  camera_.onRead = [&](const std::string&) {
    while (Progress::Clock::now() < due) std::this_thread::yield();
  };
  Run({.deleteAfter = true});
  EXPECT_THAT(Said(), HasSubstr("\"files_total\":2,\"phase\":\"comparing\""));
}

TEST_F(SyncJsonTest, ProgressSaysWhichFileIsNextOfHowManyAndHowMuchCame) {
  manifest_.Record({{KeyOf(Picture(3), 1, "K1"), "here.jpg", "", 3, false, false}});  // not read, so not counted
  // Longer than a script waits for the next event.
  const auto due = Progress::Clock::now() + std::chrono::milliseconds(600);
  camera_.onRead = [&](const std::string&) {
    while (camera_.reads == 1 && Progress::Clock::now() < due) std::this_thread::yield();
  };
  Run({}, {Picture(1), Picture(2), Picture(3)});
  EXPECT_THAT(Said(),
              testing::StartsWith("{\"schema\":1,\"event\":\"progress\",\"what\":\"100ABCDE/IMG_0001.JPG\",\"done\":0,"
                                  "\"file\":\"100ABCDE/IMG_0001.JPG\",\"index\":0,\"files\":0,\"files_total\":2,"
                                  "\"phase\":\"reading\"}\n{\"schema\":1,\"event\":\"progress\",\"what\":"
                                  "\"100ABCDE/IMG_0002.JPG\",\"done\":3,"
                                  "\"file\":\"100ABCDE/IMG_0002.JPG\",\"index\":1,\"files\":1,\"files_total\":2"));
}

}  // namespace
}  // namespace apps
