#include "apps/import/Plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "apps/camera/testing/MadePicture.h"
#include "apps/commandline/Failure.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

using testing::ElementsAre;

constexpr char kKey[] = "a9993e364706816aba3e25717850c26c9cd0d89d";

DcfObj Made(int folder, int number) {
  DcfObj picture = MadePicture(number, folder, kKey);
  picture.hasRaw = 1;
  return picture;
}

class PlanTest : public testing::Test {
 protected:
  SyncPlan Plan(const std::vector<DcfObj>& catalogue, const std::vector<int>& types) {
    return MakePlan(catalogue, "K1", types, Pattern(Pattern::kDefault), manifest_, &folder_);
  }

  const base::ScratchFolder scratch_;
  TargetFolder folder_ = TargetFolder::Open(scratch_.Path());
  Manifest manifest_{folder_, true};
};

TEST_F(PlanTest, EveryFileOfEveryPictureIsAnItem) {
  const SyncPlan plan = Plan({Made(100, 1), Made(101, 1)}, {1, 2, 3, 4});
  ASSERT_EQ(plan.items.size(), 4U);
  EXPECT_EQ(plan.NewFiles(), 4U);
  EXPECT_EQ(plan.items[0].LocalText(), "100ABCDE/IMG_0001.JPG");
  EXPECT_EQ(plan.items[3].LocalText(), "101ABCDE/IMG_0001.RAW");
  EXPECT_EQ(plan.items[3].CameraPath(), "I:\\DCIM\\101ABCDE\\IMG_0001.RAW");
}

TEST_F(PlanTest, OnlyTheTypesAskedForAreItems) {
  const SyncPlan plan = Plan({Made(100, 1)}, {2});
  ASSERT_EQ(plan.items.size(), 1U);
  EXPECT_EQ(plan.items[0].Type(), 2);
}

TEST_F(PlanTest, TheKeyIsThatOfTheFirstFileOnly) {
  const SyncPlan plan = Plan({Made(100, 1)}, {1, 2});
  EXPECT_EQ(plan.items[0].ExpectedSha1(), kKey);
  EXPECT_EQ(plan.items[1].ExpectedSha1(), "");
}

TEST_F(PlanTest, WhatTheManifestHasIsNotNew) {
  const SyncPlan before = Plan({Made(100, 1)}, {1, 2});
  manifest_.Record({{before.items[0].Key(), "moved/elsewhere.jpg", kKey, 3, false, false}});
  const SyncPlan after = Plan({Made(100, 1)}, {1, 2});
  EXPECT_FALSE(after.items[0].IsNew());
  EXPECT_TRUE(after.items[1].IsNew());
}

TEST_F(PlanTest, WhatWasDeletedOnTheCameraIsKnownAsDeleted) {
  const SyncPlan before = Plan({Made(100, 1)}, {1, 2});
  EXPECT_FALSE(before.items[0].IsDeleted());
  manifest_.Record({{before.items[0].Key(), "a.jpg", kKey, 3, true, true}});
  manifest_.Record({{before.items[1].Key(), "a.raw", kKey, 3, true, false}});
  const SyncPlan after = Plan({Made(100, 1)}, {1, 2});
  EXPECT_TRUE(after.items[0].IsDeleted());
  EXPECT_FALSE(after.items[0].IsNew());
  EXPECT_FALSE(after.items[1].IsDeleted());
  EXPECT_EQ(after.NewFiles(), 0U);
}

TEST_F(PlanTest, AKeyIsTheSerialNumberTheIdentityInHexadecimalAndTheType) {
  const ManifestKey key = KeyOf(Made(100, 1), 2, "K1");
  EXPECT_EQ(key.serial, "K1");
  EXPECT_EQ(key.picture.size(), 48U) << "24 bytes";
  EXPECT_EQ(key.type, 2);
}

TEST_F(PlanTest, AnotherPictureOfTheSameNameIsNew) {
  const SyncPlan before = Plan({Made(100, 1)}, {1});
  manifest_.Record({{before.items[0].Key(), "100ABCDE/IMG_0001.JPG", kKey, 3, false, false}});
  DcfObj other = Made(100, 1);
  other.block7[0] = 'b';
  EXPECT_TRUE(Plan({other}, {1}).items[0].IsNew());
}

TEST_F(PlanTest, ItemsThatWouldHaveOneNameAreNumberedInTheCataloguesOrder) {
  const SyncPlan plan = MakePlan({Made(100, 1), Made(101, 1), Made(102, 1), Made(102, 2)}, "K1", {1}, Pattern("{name}"),
                                 manifest_, nullptr);
  ASSERT_EQ(plan.items.size(), 4U);
  EXPECT_EQ(plan.items[0].LocalText(), "IMG_0001.JPG");
  EXPECT_EQ(plan.items[1].LocalText(), "IMG_0001-2.JPG");
  EXPECT_EQ(plan.items[2].LocalText(), "IMG_0001-3.JPG");
  EXPECT_EQ(plan.items[3].LocalText(), "IMG_0002.JPG");
}

TEST(ParseTypesTest, TypesAreReadInAnyCaseAndOnce) {
  EXPECT_THAT(ParseTypes("jpg,RAW,jpg,128"), ElementsAre(1, 2, 4));
  EXPECT_THAT(ParseTypes(std::nullopt), ElementsAre(1, 2, 3, 4));
  for (const char* bad : {"", "jpg,", "png", "jpg raw"}) {
    EXPECT_THROW(ParseTypes(bad), Failure) << bad;
  }
}

TEST(ParseTypesTest, AWrongTypeIsNamedWithTheRightOnes) {
  try {
    ParseTypes("jpg,png");
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Code(), ExitCode::kUsage);
    EXPECT_STREQ(failure.what(), "\"png\" is not a type of file; the types are jpg, raw, txt and 128.");
  }
}

class OthersInPlanTest : public PlanTest {
 protected:
  void Add(bool fetch, const std::function<bool(const OtherFile&)>& isMeant = nullptr) {
    plan_ = Plan({Made(100, 1)}, {1});
    AddOthers(plan_, {{{"I:\\DCIM\\100ABCDE\\A.MP4", 7}, {"I:\\MISC\\NOTE.TXT", 5}}, false}, fetch, manifest_, isMeant);
  }
  void Record(const SyncItem& item, bool deleted) { manifest_.Record({{item.Key(), "a.mp4", "", 7, false, deleted}}); }

  SyncPlan plan_;
};

TEST_F(OthersInPlanTest, TheyFollowThePictures) {
  Add(true);
  ASSERT_EQ(plan_.items.size(), 3U);
  const SyncItem& other = plan_.items[1];
  EXPECT_FALSE(other.IsPicture());
  EXPECT_EQ(other.CameraPath(), "I:\\DCIM\\100ABCDE\\A.MP4");
  EXPECT_EQ(other.LocalText(), "100ABCDE/A.MP4");
  EXPECT_EQ(other.ExpectedSha1(), "");
  EXPECT_EQ(other.Key().type, 0);
  EXPECT_FALSE(other.IsWith(other));
  EXPECT_TRUE(plan_.items[0].IsWith(plan_.items[0]));
  EXPECT_EQ(plan_.othersLeftOut, 0U);
}

TEST_F(OthersInPlanTest, WithoutTheWishTheNewOnesAreCounted) {
  Add(true);
  Record(plan_.items[1], false);
  Add(false);
  EXPECT_EQ(plan_.items.size(), 1U);
  EXPECT_EQ(plan_.othersLeftOut, 1U);
  EXPECT_EQ(plan_.othersLeftOutBytes, 5U);
}

TEST_F(OthersInPlanTest, OnesThatAreNotMeantAreNeitherItemsNorCounted) {
  const auto in = [](const OtherFile& file) { return file.Folder() == "100ABCDE"; };
  Add(true, in);
  EXPECT_EQ(plan_.items.size(), 2U);
  Add(false, in);
  EXPECT_EQ(plan_.othersLeftOut, 1U);
}

TEST_F(OthersInPlanTest, OneThatWasFetchedIsKnownUnlessItWasDeletedAndIsThereOnceMore) {
  Add(true);
  Record(plan_.items[1], false);
  Add(true);
  EXPECT_FALSE(plan_.items[1].IsNew());
  Record(plan_.items[1], true);
  Add(true);
  EXPECT_TRUE(plan_.items[1].IsNew());
}

TEST_F(OthersInPlanTest, WhatTheCameraMayHaveDoesNotDependOnWhatIsMeant) {
  Add(false, [](const OtherFile&) { return false; });
  const ManifestKey known = OtherFile{"I:\\MISC\\NOTE.TXT", 5}.Key("K1");
  const ManifestKey unknown = OtherFile{"I:\\MISC\\NOTE.TXT", 6}.Key("K1");
  EXPECT_TRUE(plan_.MayHave(known));
  EXPECT_FALSE(plan_.MayHave(unknown));
  EXPECT_TRUE(plan_.MayHave(KeyOf(Made(100, 1), 2, "K1")));
  EXPECT_FALSE(plan_.MayHave(KeyOf(Made(100, 2), 1, "K1")));
  plan_.others->isCut = true;
  EXPECT_TRUE(plan_.MayHave(unknown));
  EXPECT_TRUE(Plan({}, {1}).MayHave(unknown)) << "nobody has looked";
}

}  // namespace
}  // namespace apps
