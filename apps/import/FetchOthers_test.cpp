#include "apps/import/FetchOthers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "apps/camera/testing/TreeCamera.h"
#include "apps/commandline/testing/SilentContext.h"
#include "apps/import/testing/SyncTest.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

using testing::HasSubstr;

class FetchOthersTest : public SyncFolderTest, protected SilentContext {
 protected:
  FetchOthersTest() {
    camera_->open = true;
    camera_->AddFolder("I:\\DCIM", "100ABCDE");
    camera_->AddFile("I:\\DCIM\\100ABCDE", "MVI_0001.MP4", "a video");
    camera_->AddFile("I:\\MISC", "NOTE.TXT", "");
  }
  SyncTotals Run(SyncOptions options = {}) {
    SyncTally tally(nullptr);
    FetchOthers fetch(context_, camera_, "K1", folder_, manifest_, cuts_, options, tally);
    ended_ = fetch.Run(FindOthers(context_, *camera_, {}, "K1", manifest_));
    return tally.Now();
  }
  bool CameraHas(const std::string& name) const { return camera_->files.count(name) == 1; }
  std::ptrdiff_t Temporaries() const {
    const std::filesystem::recursive_directory_iterator all(path_);
    return std::count_if(begin(all), end(all), [](const auto& entry) { return entry.path().extension() == ".part"; });
  }

  static constexpr SyncOptions kVerify = {.verify = true};
  static constexpr SyncOptions kDelete = {.verify = true, .deleteAfter = true};
  boost::shared_ptr<TreeCamera> camera_{new TreeCamera};
  std::optional<Outcome> ended_;
};

TEST_F(FetchOthersTest, StoresThemBelowTheirOwnFoldersOnce) {
  const SyncTotals first = Run();
  EXPECT_EQ(first.stored, 2U);
  EXPECT_EQ(first.bytes, 7U);
  EXPECT_EQ(first.sizeOnly, 2U);
  EXPECT_EQ(Text("100ABCDE/MVI_0001.MP4"), "a video");
  EXPECT_TRUE(std::filesystem::exists(path_ + "/MISC/NOTE.TXT"));
  EXPECT_EQ(Run().stored, 0U);
}

TEST_F(FetchOthersTest, OverwritesNothingAndTakesANumber) {
  folder_.Below("100ABCDE");
  std::ofstream(path_ + "/100ABCDE/MVI_0001.MP4") << "mine";
  EXPECT_EQ(Run().numbered, 1U);
  EXPECT_EQ(Text("100ABCDE/MVI_0001.MP4"), "mine");
  EXPECT_EQ(Text("100ABCDE/MVI_0001-2.MP4"), "a video");
}

TEST_F(FetchOthersTest, WhatIsHereAlreadyIsRecorded) {
  folder_.Below("100ABCDE");
  std::ofstream(path_ + "/100ABCDE/MVI_0001.MP4") << "a video";
  EXPECT_EQ(Run().alreadyHere, 1U);
  EXPECT_FALSE(std::filesystem::exists(path_ + "/100ABCDE/MVI_0001-2.MP4"));
}

TEST_F(FetchOthersTest, TwoReadsThatDifferAreAFailureAndNothingIsKept) {
  camera_->onRead = [this](const std::string&) {
    camera_->files["MVI_0001.MP4"] = camera_->reads % 2 == 0 ? "a video" : "A video";
  };
  EXPECT_EQ(Run(kVerify).failed, 1U);
  EXPECT_THAT(Said(), HasSubstr("Two reads of I:/DCIM/100ABCDE/MVI_0001.MP4 differ"));
  EXPECT_FALSE(std::filesystem::exists(path_ + "/100ABCDE/MVI_0001.MP4"));
  EXPECT_EQ(Temporaries(), 0);
}

TEST_F(FetchOthersTest, ASizeThatIsNotTheListedOneIsAFailure) {
  camera_->files["MVI_0001.MP4"] = "another video";
  const SyncTotals totals = Run();
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(totals.stored, 1U);
  EXPECT_THAT(Said(), HasSubstr("7 bytes, and the camera announces 13"));
}

TEST_F(FetchOthersTest, IsDeletedOnTheCameraAfterTwoEqualReads) {
  EXPECT_EQ(Run(kDelete).deleted, 2U);
  EXPECT_FALSE(CameraHas("MVI_0001.MP4"));
  EXPECT_EQ(Text("100ABCDE/MVI_0001.MP4"), "a video");
}

TEST_F(FetchOthersTest, OneOfAnEarlierRunIsReadOnceMoreBeforeItIsDeleted) {
  Run();
  camera_->files["MVI_0001.MP4"] = "a vidEo";
  const SyncTotals totals = Run(kDelete);
  EXPECT_EQ(totals.deleted, 1U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_TRUE(CameraHas("MVI_0001.MP4"));
  EXPECT_THAT(Said(), HasSubstr("was not deleted: it is no longer what was fetched from there."));
}

TEST_F(FetchOthersTest, OneThatIsEditedHereStaysOnTheCamera) {
  Run();
  std::ofstream(path_ + "/100ABCDE/MVI_0001.MP4") << "a vidEo";
  EXPECT_EQ(Run(kDelete).deleted, 1U);
  EXPECT_TRUE(CameraHas("MVI_0001.MP4"));
  EXPECT_THAT(Said(), HasSubstr("was not deleted: 100ABCDE/MVI_0001.MP4 was edited after it was fetched."));
}

TEST_F(FetchOthersTest, OneThatIsGoneHereStaysOnTheCamera) {
  Run();
  std::filesystem::remove(path_ + "/100ABCDE/MVI_0001.MP4");
  EXPECT_EQ(Run(kDelete).deleted, 1U);
  EXPECT_TRUE(CameraHas("MVI_0001.MP4"));
}

TEST_F(FetchOthersTest, ACameraThatHasGoneEndsItAndWhatIsStoredStays) {
  camera_->onRead = [](const std::string& path) {
    if (!path.ends_with("MVI_0001.MP4")) return;
    throw CameraTransferError(
        "Transfer error\nCDB=[c4 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00]\nret=0xe00002c0 "
        "result.status=0x00000000");
  };
  Run();
  ASSERT_TRUE(ended_.has_value());
  EXPECT_EQ(ended_->code, ExitCode::kGone);
  EXPECT_EQ(Temporaries(), 0);
}

}  // namespace
}  // namespace apps
