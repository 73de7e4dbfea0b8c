#include "apps/import/LetGo.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "apps/import/testing/SyncFixture.h"

namespace apps {
namespace {

namespace fs = std::filesystem;

class LetGoTest : public SyncTest {
 protected:
  LetGoOutcome Go(int number) {
    const SyncPlan plan = Plan({Picture(number)});
    CutFiles cuts(folder_, manifest_);
    return LetGo(plan.items[0], folder_, manifest_, cuts);
  }
  fs::path Here(const std::string& name) const { return fs::path(path_) / "100ABCDE" / name; }
};

TEST_F(LetGoTest, AFileThatWasThrownAwayIsDeletedOnTheCameraAfterThat) {
  Run();
  fs::remove(Here("IMG_0001.JPG"));
  EXPECT_EQ(Go(1), LetGoOutcome::kFile);
  EXPECT_EQ(Go(1), LetGoOutcome::kBefore) << "once is enough";
  EXPECT_EQ(Run().stored, 0U) << "it is not fetched again";
  const SyncTotals totals = Run({.deleteAfter = true});
  EXPECT_EQ(totals.deleted, 2U);
  EXPECT_EQ(totals.failed, 0U);
  EXPECT_FALSE(CameraHas("IMG_0001.JPG"));
}

TEST_F(LetGoTest, WhatIsNoLongerWhatWasFetchedStaysOnTheCameraAllTheSame) {
  Run();
  fs::remove(Here("IMG_0001.JPG"));
  EXPECT_EQ(Go(1), LetGoOutcome::kFile);
  camera_.files["IMG_0001.JPG"] = "eno";
  EXPECT_EQ(Run({.deleteAfter = true}).failed, 1U);
  EXPECT_TRUE(CameraHas("IMG_0001.JPG"));
}

TEST_F(LetGoTest, APictureThatWasPutBackIsLetGoOnceMore) {
  Run();
  fs::remove(Here("IMG_0001.JPG"));
  EXPECT_EQ(Go(1), LetGoOutcome::kFile);
  EXPECT_EQ(Run({.deleteAfter = true}).deleted, 2U);
  camera_.files["IMG_0001.JPG"] = "one";
  EXPECT_EQ(Run({.deleteAfter = true}).failed, 1U);
  EXPECT_EQ(
      Said(),
      "kelva: I:/DCIM/100ABCDE/IMG_0001.JPG came back to the camera and is not here, so the file on the camera was not "
      "deleted. `kelva sync --forget` lets it go once more.\n");
  EXPECT_TRUE(CameraHas("IMG_0001.JPG")) << "the only one there is";
  EXPECT_EQ(Go(1), LetGoOutcome::kFile);
  EXPECT_EQ(Run({.deleteAfter = true}).deleted, 1U);
  EXPECT_FALSE(CameraHas("IMG_0001.JPG"));
}

TEST_F(LetGoTest, AFileThatIsHereIsNotLetGo) {
  Run();
  EXPECT_EQ(Go(1), LetGoOutcome::kHere);
  std::ofstream(Here("IMG_0001.JPG")) << "mine";
  EXPECT_EQ(Go(1), LetGoOutcome::kEdited);
  EXPECT_EQ(Text("100ABCDE/IMG_0001.JPG"), "mine");
  EXPECT_EQ(Run({.deleteAfter = true}).failed, 1U);
}

TEST_F(LetGoTest, WhatWasNeverFetchedIsSaid) {
  EXPECT_EQ(Go(1), LetGoOutcome::kNotFetched);
  EXPECT_EQ(Run().stored, 2U);
}

TEST_F(LetGoTest, APartIsRemovedWithItsRow) {
  folder_.Below("100ABCDE");
  std::ofstream(Here(".kelva-1.part")) << "o";
  std::ofstream(Here(".kelva-2.part")) << "t";
  manifest_.RecordCut({KeyOf(Picture(1), 1, "K1"), 3, "100ABCDE/.kelva-1.part"});
  manifest_.RecordCut({KeyOf(Picture(2), 1, "K1"), 3, "100ABCDE/.kelva-2.part"});
  EXPECT_EQ(Go(1), LetGoOutcome::kPart);
  EXPECT_FALSE(fs::exists(Here(".kelva-1.part")));
  EXPECT_TRUE(fs::exists(Here(".kelva-2.part")));
  ASSERT_EQ(manifest_.Cuts().size(), 1U);
}

TEST_F(LetGoTest, TheOtherFilesOfAPictureKeepTheirNumber) {
  DcfObj picture = Picture(1);
  picture.hasRaw = picture.hasTxt = 1;
  manifest_.Record({{KeyOf(picture, 1, "K1"), "100ABCDE/IMG_0001-4.JPG", "", 3, false, false},
                    {KeyOf(picture, 2, "K1"), "100ABCDE/IMG_0001-4.RAW", "", 3, false, false}});
  manifest_.LetGo({KeyOf(picture, 1, "K1")});
  const SyncPlan plan = MakePlan({picture}, "K1", {1, 2, 3}, Pattern(Pattern::kDefault), manifest_, &folder_);
  EXPECT_EQ(plan.items.back().LocalText(), "100ABCDE/IMG_0001-4.TXT");
}

}  // namespace
}  // namespace apps
