#include "apps/import/DeleteFetched.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "apps/files/testing/RecordingCalls.h"
#include "apps/import/testing/SyncFixture.h"

namespace apps {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

using DeleteFetchedTest = SyncTest;

TEST_F(DeleteFetchedTest, AFileHereThatIsNoLongerTheSameKeepsItsPictureOnTheCamera) {
  camera_.files["IMG_0003.JPG"] = camera_.files["IMG_0004.JPG"] = camera_.files["IMG_0005.JPG"] = "one";
  const std::vector<DcfObj> catalogue = {Picture(1), Picture(2), Picture(3), Picture(4), Picture(5)};
  EXPECT_EQ(Run({.verify = true}, catalogue).stored, 5U);
  const fs::path folder = fs::path(path_) / "100ABCDE";
  std::ofstream(folder / "IMG_0001.JPG") << "eno";
  std::ofstream(folder / "IMG_0002.JPG") << "two and more";
  fs::remove(folder / "IMG_0003.JPG");
  ASSERT_EQ(::mkfifo((folder / "IMG_0003.JPG").c_str(), 0600), 0);
  fs::rename(folder / "IMG_0004.JPG", folder / "moved");
  fs::create_symlink("moved", folder / "IMG_0004.JPG");
  const SyncTotals totals = Run(kVerifyAndDelete, catalogue);
  EXPECT_EQ(totals.deleted, 1U);
  EXPECT_EQ(totals.failed, 4U);
  EXPECT_TRUE(CameraHas("IMG_0001.JPG") && CameraHas("IMG_0002.JPG") && CameraHas("IMG_0003.JPG"));
  EXPECT_TRUE(CameraHas("IMG_0004.JPG") && !CameraHas("IMG_0005.JPG"));
  EXPECT_THAT(
      Said(),
      HasSubstr("kelva: 100ABCDE/IMG_0001.JPG was edited after it was fetched, so the file on the camera was not "
                "deleted.\n"));
  EXPECT_THAT(Said(), HasSubstr("kelva: 100ABCDE/IMG_0003.JPG is no longer a file, so"));
}

TEST_F(DeleteFetchedTest, WhatIsNotAsItsKeySaysIsReadOnceMoreBeforeItIsDeleted) {
  camera_.files["IMG_0002.JPG"] = "one";
  const SyncTotals totals =
      Run({.deleteAfter = true}, {Picture(1), Picture(2, "fe05bcdcdc4928012781a5f1a2a77cbb5398e106")});
  EXPECT_EQ(totals.deleted, 2U);
  EXPECT_EQ(camera_.reads, 3);
  EXPECT_EQ(totals.checked, 1U);
  EXPECT_EQ(totals.readTwice, 1U);
  EXPECT_EQ(totals.sizeOnly, 0U);
}

TEST_F(DeleteFetchedTest, APictureThatAnotherProgramReplacedAfterItWasStoredStays) {
  camera_.onRead = [&](const std::string&) {
    if (camera_.reads == 3) camera_.files["IMG_0001.JPG"] = "eno";  // before the second read of the first
  };
  const SyncTotals totals = Run({.deleteAfter = true});
  EXPECT_EQ(totals.deleted, 1U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_TRUE(CameraHas("IMG_0001.JPG"));
  EXPECT_EQ(Text("100ABCDE/IMG_0001.JPG"), "one");
}

TEST_F(DeleteFetchedTest, WithoutTheWishNothingIsDeleted) {
  EXPECT_EQ(Run({.verify = true}).deleted, 0U);
  EXPECT_TRUE(CameraHas("IMG_0001.JPG") && CameraHas("IMG_0002.JPG"));
}

TEST_F(DeleteFetchedTest, ADeletionThatTheCameraDoesNotCarryOutIsSaidAndNotRemembered) {
  camera_.refuses = true;
  const SyncTotals totals = Run(kVerifyAndDelete, {Picture(1)});
  EXPECT_EQ(totals.deleted, 0U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(Said(), "kelva: The camera refused to delete I:/DCIM/100ABCDE/IMG_0001.JPG.\n");
  EXPECT_FALSE(manifest_.Find(KeyOf(Picture(1), 1, "K1"))->deleted);
}

TEST_F(DeleteFetchedTest, AnErrorOfTheCameraIsSaidWithWhatWasTried) {
  camera_.forbidden = "IMG_0001.JPG";
  Run(kVerifyAndDelete);
  EXPECT_THAT(Said(), testing::StartsWith("kelva: Cannot delete I:/DCIM/100ABCDE/IMG_0001.JPG: "));
}

TEST_F(DeleteFetchedTest, APictureThatHasChangedIsNamed) {
  EXPECT_EQ(Run({}, {Picture(1)}).stored, 1U);
  camera_.files["IMG_0001.JPG"] = "eno";
  EXPECT_EQ(Run(kVerifyAndDelete, {Picture(1)}).failed, 1U);
  EXPECT_EQ(Said(),
            "kelva: I:/DCIM/100ABCDE/IMG_0001.JPG is no longer what was fetched from there; it was not deleted, and "
            "`kelva get` fetches it as it is now.\n");
}

TEST_F(DeleteFetchedTest, WhatWasDeletedIsNotAskedForAgain) {
  EXPECT_EQ(Run(kVerifyAndDelete).deleted, 2U);
  EXPECT_EQ(camera_.reads, 6);
  const SyncTotals totals = Run(kVerifyAndDelete);
  EXPECT_EQ(totals.deleted + totals.failed, 0U);
  EXPECT_EQ(camera_.reads, 6);
}

TEST_F(DeleteFetchedTest, APictureThatWasPutBackIsDeletedAgainWhileItIsHere) {
  EXPECT_EQ(Run(kVerifyAndDelete).deleted, 2U);
  camera_.files = {{"IMG_0001.JPG", "one"}, {"IMG_0002.JPG", "tow"}};
  const SyncTotals totals = Run(kVerifyAndDelete);
  EXPECT_EQ(totals.stored, 0U);
  EXPECT_EQ(totals.deleted, 1U);
  EXPECT_FALSE(CameraHas("IMG_0001.JPG"));
  EXPECT_TRUE(CameraHas("IMG_0002.JPG")) << "it is another one";
  EXPECT_THAT(Said(), HasSubstr("I:/DCIM/100ABCDE/IMG_0002.JPG is no longer what was fetched from there; "));
}

TEST_F(DeleteFetchedTest, APictureThatWasPutBackAndIsNotHereStays) {
  EXPECT_EQ(Run(kVerifyAndDelete, {Picture(1)}).deleted, 1U);
  fs::remove(fs::path(path_) / "100ABCDE/IMG_0001.JPG");
  camera_.files["IMG_0001.JPG"] = "one";
  EXPECT_EQ(Run(kVerifyAndDelete, {Picture(1)}).failed, 1U);
  EXPECT_TRUE(CameraHas("IMG_0001.JPG"));
}

TEST_F(DeleteFetchedTest, ACameraThatHasGoneEndsTheDeletions) {
  camera_.onDelete = [](const std::string&) { throw Gone(); };
  const Outcome outcome = RunToItsEnd(kVerifyAndDelete);
  EXPECT_EQ(outcome.code, ExitCode::kGone);
  EXPECT_THAT(outcome.sentence, testing::StartsWith("Cannot delete I:/DCIM/100ABCDE/IMG_0001.JPG: "));
  EXPECT_EQ(Said(), "");
}

TEST_F(DeleteFetchedTest, NothingIsDeletedAfterARunThatDidNotGetToItsEnd) {
  camera_.onRead = [&](const std::string& path) {
    if (path.ends_with("IMG_0002.JPG")) throw Gone();
  };
  RunToItsEnd(kVerifyAndDelete);
  EXPECT_TRUE(CameraHas("IMG_0001.JPG"));
}

TEST_F(DeleteFetchedTest, AStopBetweenTwoDeletionsKeepsTheSecondPicture) {
  camera_.onDelete = [&](const std::string&) { stop_.Request(); };
  EXPECT_THROW(Run(kVerifyAndDelete), Stopped);
  EXPECT_FALSE(CameraHas("IMG_0001.JPG"));
  EXPECT_TRUE(CameraHas("IMG_0002.JPG"));
}

TEST_F(DeleteFetchedTest, OnlyWhatIsOnDiskIsDeletedOnTheCamera) {
  EXPECT_EQ(Run({.verify = true}).stored, 2U);
  std::filesystem::remove(path_ + "/100ABCDE/IMG_0001.JPG");
  const SyncTotals totals = Run({.verify = true, .deleteAfter = true});
  EXPECT_EQ(totals.deleted, 1U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(camera_.files.count("IMG_0001.JPG"), 1U);
  EXPECT_EQ(camera_.files.count("IMG_0002.JPG"), 0U);
}

TEST_F(DeleteFetchedTest, ADeletionThatTheCameraRefusesIsReportedAndTheRestGoesOn) {
  camera_.forbidden = "IMG_0001.JPG";
  const SyncTotals totals = Run({.verify = true, .deleteAfter = true});
  EXPECT_EQ(totals.stored, 2U);
  EXPECT_EQ(totals.deleted, 1U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(camera_.files.count("IMG_0002.JPG"), 0U);
}

TEST_F(DeleteFetchedTest, WhatHasChangedOnTheCameraIsNotDeleted) {
  EXPECT_EQ(Run().stored, 2U);
  camera_.files["IMG_0001.JPG"] = "another";
  EXPECT_EQ(Run({.verify = true, .deleteAfter = true}).deleted, 1U);
  EXPECT_EQ(camera_.files.count("IMG_0001.JPG"), 1U);
}

TEST_F(DeleteFetchedTest, NothingIsDeletedOnTheCameraBeforeAllOfItIsOnDiskHere) {
  RecordingCalls calls(path_);
  camera_.onDelete = [&](const std::string& path) { calls.Note("DELETE " + path); };
  EXPECT_EQ(Run({.verify = true, .deleteAfter = true}, {Picture(1)}).deleted, 1U);
  EXPECT_THAT(calls.Log(),
              ElementsAre("make 100ABCDE", "create 100ABCDE/*.part", "create 100ABCDE/*.part", "write 100ABCDE/*.part",
                          "flush 100ABCDE/*.part", "rename 100ABCDE/IMG_0001.JPG", "flush folder 100ABCDE",
                          "flush folder .", "commit", "DELETE I:\\DCIM\\100ABCDE\\IMG_0001.JPG", "commit"));
}

TEST_F(DeleteFetchedTest, AMarkThatCannotBeWrittenEndsTheRunAndItsTotalsAreKept) {
  RecordingCalls calls(path_);
  camera_.onDelete = [&](const std::string&) { calls.FailAt(1, ENOSPC); };
  camera_.catalogue = {Picture(1), Picture(2)};
  const SyncPlan plan = Plan({Picture(1), Picture(2)});
  const auto sync = std::make_unique<Sync>(context_, Shared(camera_), folder_, manifest_, kVerifyAndDelete);
  const auto ended = sync->Run(plan);
  ASSERT_TRUE(ended.has_value());
  EXPECT_THAT(ended->sentence, testing::StartsWith("Cannot write the list of fetched files "));
  EXPECT_EQ(sync->Totals().stored, 2U);
  EXPECT_EQ(sync->Totals().deleted, 2U) << "what is marked together was on disk before";
}

using DeleteFetchedJsonTest = SyncJsonTest;

TEST_F(DeleteFetchedJsonTest, EachDeletionIsAnEvent) {
  Run(kVerifyAndDelete, {Picture(1)});
  EXPECT_THAT(Printed(),
              HasSubstr("{\"schema\":1,\"event\":\"deleted\",\"path\":\"I:\\\\DCIM\\\\100ABCDE\\\\IMG_0001.JPG\"}\n"));
}

}  // namespace
}  // namespace apps
