#include "apps/import/Sync.h"

#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/testing/SilentContext.h"
#include "apps/import/testing/SyncTest.h"

namespace apps {
namespace {

class SyncTest : public SyncFolderTest, protected SilentContext {
 protected:
  SyncTest() {
    camera_.folder = "I:\\DCIM\\100ABCDE";
    camera_.files = {{"IMG_0001.JPG", "one"}, {"IMG_0002.JPG", "two"}};
  }

  SyncTotals Run(SyncOptions options = {}) {
    const SyncPlan plan = Plan({Picture(1), Picture(2)});
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

}  // namespace
}  // namespace apps
