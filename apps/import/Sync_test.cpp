#include "apps/import/Sync.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/testing/SilentContext.h"
#include "apps/files/testing/RecordingCalls.h"
#include "apps/import/testing/SyncTest.h"

namespace apps {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class SyncTest : public SyncFolderTest, protected SilentContext {
 protected:
  explicit SyncTest(ReportStyle style = {}) : SilentContext(style) {
    camera_.folder = "I:\\DCIM\\100ABCDE";
    camera_.files = {{"IMG_0001.JPG", "one"}, {"IMG_0002.JPG", "two"}};
  }

  SyncTotals Run(SyncOptions options = {}, const std::vector<DcfObj>& catalogue = {Picture(1), Picture(2)}) {
    const SyncPlan plan = Plan(catalogue);
    Sync sync(context_, camera_, folder_, manifest_, options);
    EXPECT_FALSE(sync.Run(plan).has_value());
    return sync.Totals();
  }

  FakeCamera camera_;
};

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

TEST_F(SyncTest, OnlyWhatIsOnDiskIsDeletedOnTheCamera) {
  EXPECT_EQ(Run({.verify = true}).stored, 2U);
  std::filesystem::remove(path_ + "/100ABCDE/IMG_0001.JPG");
  const SyncTotals totals = Run({.verify = true, .deleteAfter = true});
  EXPECT_EQ(totals.deleted, 1U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(camera_.files.count("IMG_0001.JPG"), 1U);
  EXPECT_EQ(camera_.files.count("IMG_0002.JPG"), 0U);
}

TEST_F(SyncTest, ADeletionThatTheCameraRefusesIsReportedAndTheRestGoesOn) {
  camera_.forbidden = "IMG_0001.JPG";
  const SyncTotals totals = Run({.verify = true, .deleteAfter = true});
  EXPECT_EQ(totals.stored, 2U);
  EXPECT_EQ(totals.deleted, 1U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(camera_.files.count("IMG_0002.JPG"), 0U);
}

TEST_F(SyncTest, WhatHasChangedOnTheCameraIsNotDeleted) {
  EXPECT_EQ(Run().stored, 2U);
  camera_.files["IMG_0001.JPG"] = "another";
  EXPECT_EQ(Run({.verify = true, .deleteAfter = true}).deleted, 1U);
  EXPECT_EQ(camera_.files.count("IMG_0001.JPG"), 1U);
}

TEST_F(SyncTest, EveryReadIsSentWithTheFlagOfATransfer) {
  Run();
  EXPECT_TRUE(camera_.lastFlag);
}

TEST_F(SyncTest, NothingIsDeletedOnTheCameraBeforeAllOfItIsOnDiskHere) {
  RecordingCalls calls(path_);
  camera_.onDelete = [&](const std::string& path) { calls.Note("DELETE " + path); };
  EXPECT_EQ(Run({.verify = true, .deleteAfter = true}, {Picture(1)}).deleted, 1U);
  EXPECT_THAT(calls.Log(),
              ElementsAre("make 100ABCDE", "create 100ABCDE/*.part", "write 100ABCDE/*.part", "flush 100ABCDE/*.part",
                          "rename 100ABCDE/IMG_0001.JPG", "flush folder 100ABCDE", "flush folder .", "commit",
                          "DELETE I:\\DCIM\\100ABCDE\\IMG_0001.JPG", "commit"));
}

TEST_F(SyncTest, AMarkThatCannotBeWrittenEndsTheRunAndItsTotalsAreKept) {
  RecordingCalls calls(path_);
  camera_.onDelete = [&](const std::string&) { calls.FailAt(1, ENOSPC); };
  const SyncPlan plan = Plan({Picture(1), Picture(2)});
  Sync sync(context_, camera_, folder_, manifest_, {.verify = true, .deleteAfter = true});
  const auto ended = sync.Run(plan);
  ASSERT_TRUE(ended.has_value());
  EXPECT_THAT(ended->sentence, testing::StartsWith("Cannot write the list of fetched files "));
  EXPECT_EQ(sync.Totals().stored, 2U);
  EXPECT_EQ(camera_.files.size(), 1U) << "the second file stays on the camera";
}

class SyncJsonTest : public SyncTest {
 protected:
  SyncJsonTest() : SyncTest({.json = true}) {}
};

TEST_F(SyncJsonTest, AFileThatFailsIsAnEventOfItsOwn) {
  camera_.files.erase("IMG_0001.JPG");
  Run();
  const std::string events = Printed();
  EXPECT_THAT(events, HasSubstr("\"event\":\"failed\",\"path\":\"I:\\\\DCIM\\\\100ABCDE\\\\IMG_0001.JPG\",\"error\":"));
  EXPECT_THAT(events, HasSubstr("\"event\":\"stored\",\"path\":\"I:\\\\DCIM\\\\100ABCDE\\\\IMG_0002.JPG\","));
  EXPECT_THAT(
      events,
      HasSubstr(
          "\"size\":3,\"sha1\":\"ad782ecdac770fc6eb9a62e44f90873fb97fb26b\",\"verified\":false,\"was_here\":false}"));
}

}  // namespace
}  // namespace apps
