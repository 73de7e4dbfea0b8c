// A sync of files that the catalogue does not have.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "apps/camera/testing/TreeCamera.h"
#include "apps/commandline/testing/SilentContext.h"
#include "apps/files/testing/RecordingCalls.h"
#include "apps/import/Sync.h"
#include "apps/import/testing/SyncTest.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

using testing::HasSubstr;

class SyncOthersTest : public SyncFolderTest, protected SilentContext {
 protected:
  SyncOthersTest() {
    camera_->open = true;
    camera_->AddFolder("I:\\DCIM", "100ABCDE");
    camera_->AddFile("I:\\DCIM\\100ABCDE", "MVI_0001.MP4", "a video");
    camera_->AddFile("I:\\MISC", "NOTE.TXT", "");
  }
  SyncPlan Plan() {
    SyncPlan plan = SyncFolderTest::Plan({});
    AddOthers(plan, FindOthers(context_, *camera_, {}), true, manifest_);
    return plan;
  }
  SyncTotals Run(SyncOptions options = {}) {
    const SyncPlan plan = Plan();
    const auto sync = std::make_unique<Sync>(context_, camera_, folder_, manifest_, options);
    ended_ = sync->Run(plan);
    return sync->Totals();
  }
  /// A video of two megabytes and a bit.
  std::string AddLarge() {
    std::string bytes(kLarge, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 2654435761U >> 24);
    camera_->AddFile("I:\\DCIM\\100ABCDE", "MVI_0002.MP4", bytes);
    return bytes;
  }
  void CutBehind(std::size_t offset) {
    camera_->onSend = [offset](std::size_t at, std::size_t) {
      if (at >= offset) throw Gone();
    };
  }
  bool CameraHas(const std::string& name) const { return camera_->files.count(name) == 1; }
  std::ptrdiff_t Temporaries() const {
    const std::filesystem::recursive_directory_iterator all(path_);
    return std::count_if(begin(all), end(all), [](const auto& entry) { return entry.path().extension() == ".part"; });
  }

  static CameraTransferError Gone() {
    return CameraTransferError(
        "Transfer error\nCDB=[c4 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00]\nret=0xe00002c0 "
        "result.status=0x00000000");
  }

  static constexpr std::size_t kLarge = (2U << 20) + 123;
  static constexpr SyncOptions kVerify = {.verify = true};
  static constexpr SyncOptions kDelete = {.verify = true, .deleteAfter = true};
  boost::shared_ptr<TreeCamera> camera_{new TreeCamera};
  std::optional<Outcome> ended_;
};

TEST_F(SyncOthersTest, StoresThemBelowTheirOwnFoldersOnce) {
  const SyncTotals first = Run();
  EXPECT_EQ(first.stored, 2U);
  EXPECT_EQ(first.bytes, 7U);
  EXPECT_EQ(first.sizeOnly, 2U);
  EXPECT_EQ(Text("100ABCDE/MVI_0001.MP4"), "a video");
  EXPECT_TRUE(std::filesystem::exists(path_ + "/MISC/NOTE.TXT"));
  EXPECT_EQ(Run().stored, 0U);
}

TEST_F(SyncOthersTest, OverwritesNothingAndTakesANumber) {
  folder_.Below("100ABCDE");
  std::ofstream(path_ + "/100ABCDE/MVI_0001.MP4") << "mine";
  EXPECT_EQ(Run().numbered, 1U);
  EXPECT_EQ(Text("100ABCDE/MVI_0001.MP4"), "mine");
  EXPECT_EQ(Text("100ABCDE/MVI_0001-2.MP4"), "a video");
}

TEST_F(SyncOthersTest, WhatIsHereAlreadyIsRecorded) {
  folder_.Below("100ABCDE");
  std::ofstream(path_ + "/100ABCDE/MVI_0001.MP4") << "a video";
  EXPECT_EQ(Run().alreadyHere, 1U);
  EXPECT_FALSE(std::filesystem::exists(path_ + "/100ABCDE/MVI_0001-2.MP4"));
}

TEST_F(SyncOthersTest, TwoReadsThatDifferAreAFailureAndNothingIsKept) {
  camera_->onRead = [this](const std::string&) {
    camera_->files["MVI_0001.MP4"] = camera_->reads % 2 == 0 ? "a video" : "A video";
  };
  EXPECT_EQ(Run(kVerify).failed, 1U);
  EXPECT_THAT(Said(), HasSubstr("Two reads of I:/DCIM/100ABCDE/MVI_0001.MP4 differ"));
  EXPECT_FALSE(std::filesystem::exists(path_ + "/100ABCDE/MVI_0001.MP4"));
  EXPECT_EQ(Temporaries(), 0);
}

TEST_F(SyncOthersTest, ASizeThatIsNotTheListedOneIsAFailure) {
  camera_->files["MVI_0001.MP4"] = "another video";
  const SyncTotals totals = Run();
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(totals.stored, 1U);
  EXPECT_THAT(Said(), HasSubstr("7 bytes, and the camera announces 13"));
}

TEST_F(SyncOthersTest, IsDeletedOnTheCameraAfterTwoEqualReads) {
  EXPECT_EQ(Run(kDelete).deleted, 2U);
  EXPECT_FALSE(CameraHas("MVI_0001.MP4"));
  EXPECT_EQ(Text("100ABCDE/MVI_0001.MP4"), "a video");
}

TEST_F(SyncOthersTest, OneOfAnEarlierRunIsReadOnceMoreBeforeItIsDeleted) {
  Run();
  camera_->files["MVI_0001.MP4"] = "a vidEo";
  const SyncTotals totals = Run(kDelete);
  EXPECT_EQ(totals.deleted, 1U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_TRUE(CameraHas("MVI_0001.MP4"));
  EXPECT_THAT(
      Said(),
      HasSubstr(
          "is no longer what was fetched from there; it was not deleted, and `kelva get` fetches it as it is now."));
}

TEST_F(SyncOthersTest, OneThatIsEditedHereStaysOnTheCamera) {
  Run();
  std::ofstream(path_ + "/100ABCDE/MVI_0001.MP4") << "a vidEo";
  EXPECT_EQ(Run(kDelete).deleted, 1U);
  EXPECT_TRUE(CameraHas("MVI_0001.MP4"));
  EXPECT_THAT(
      Said(),
      HasSubstr("100ABCDE/MVI_0001.MP4 was edited after it was fetched, so the file on the camera was not deleted."));
}

TEST_F(SyncOthersTest, OneThatIsGoneHereStaysOnTheCamera) {
  Run();
  std::filesystem::remove(path_ + "/100ABCDE/MVI_0001.MP4");
  EXPECT_EQ(Run(kDelete).deleted, 1U);
  EXPECT_TRUE(CameraHas("MVI_0001.MP4"));
}

TEST_F(SyncOthersTest, ACameraThatHasGoneEndsItAndWhatIsStoredStays) {
  camera_->onRead = [](const std::string& path) {
    if (!path.ends_with("MVI_0001.MP4")) return;
    throw Gone();
  };
  Run();
  ASSERT_TRUE(ended_.has_value());
  EXPECT_EQ(ended_->code, ExitCode::kGone);
  EXPECT_EQ(Temporaries(), 0);
}

TEST_F(SyncOthersTest, OneThatWasCutGoesOnWhereItEnded) {
  const std::string bytes = AddLarge();
  CutBehind(1'500'000);
  Run();
  ASSERT_TRUE(ended_.has_value());
  EXPECT_EQ(ended_->code, ExitCode::kGone);
  ASSERT_EQ(manifest_.Cuts().size(), 1U);
  EXPECT_EQ(Temporaries(), 1);
  std::size_t sent = 0;
  camera_->onSend = [&](std::size_t, std::size_t count) { sent += count; };
  const SyncTotals totals = Run();
  EXPECT_EQ(totals.resumed, 1U);
  EXPECT_EQ(totals.readTwice, 1U) << "without a key a second read decides";
  EXPECT_LT(sent, kLarge + 900'000U);
  EXPECT_TRUE(Text("100ABCDE/MVI_0002.MP4") == bytes);
  EXPECT_EQ(Temporaries(), 0);
  EXPECT_TRUE(manifest_.Cuts().empty());
}

TEST_F(SyncOthersTest, APartStaysWhileItsFileIsThereAndGoesWithIt) {
  AddLarge();
  CutBehind(1'500'000);
  Run();
  camera_->onSend = nullptr;
  const SyncPlan nobodyLooked = SyncFolderTest::Plan({});
  EXPECT_FALSE(Sync(context_, camera_, folder_, manifest_, {}).Run(nobodyLooked).has_value());
  EXPECT_EQ(Temporaries(), 1);
  camera_->tree["I:\\DCIM\\100ABCDE"].pop_back();
  Run();
  EXPECT_EQ(Temporaries(), 0);
}

TEST_F(SyncOthersTest, AFullDiskEndsTheRunWithItsSentence) {
  RecordingCalls calls(path_);
  calls.FailEach(1, 1 << 20, ENOSPC, "write ");
  Run();
  ASSERT_TRUE(ended_.has_value());
  EXPECT_THAT(ended_->sentence, HasSubstr("make room there and try again"));
}

TEST_F(SyncOthersTest, AStopInTheMiddleOfAFileStoresNothingOfIt) {
  const SyncPlan plan = Plan();
  camera_->onRead = [&](const std::string& path) {
    if (path == plan.items[1].CameraPath()) stop_.Request();
  };
  const auto sync = std::make_unique<Sync>(context_, camera_, folder_, manifest_, SyncOptions{});
  EXPECT_THROW(sync->Run(plan), Stopped);
  EXPECT_FALSE(manifest_.Find(plan.items[1].Key()).has_value());
}

TEST_F(SyncOthersTest, OneThatWasDeletedOnTheCameraAndIsThereOnceMoreIsNew) {
  EXPECT_EQ(Run(kDelete).deleted, 2U);
  camera_->files["MVI_0001.MP4"] = "a video";
  camera_->files["NOTE.TXT"] = "";
  EXPECT_EQ(Plan().NewFiles(), 2U);
  EXPECT_EQ(Run().alreadyHere, 2U);
}

}  // namespace
}  // namespace apps
