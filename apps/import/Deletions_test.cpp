#include "apps/import/Deletions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "apps/camera/Picture.h"
#include "apps/files/Sha1.h"
#include "apps/files/testing/RecordingCalls.h"
#include "apps/import/testing/SyncFixture.h"

namespace apps {
namespace {

class DeletionsTest : public SyncTest {
 protected:
  DeletionsTest() { Run({.verify = true}, {Picture(1), Picture(2)}); }

  /// What the camera has, and how often it was asked.
  const Deletions::Hash hash_ = [this](const SyncItem& item) {
    ++hashed_;
    return Sha1(camera_.files.at(PictureFileName(item.Picture(), item.Type())));
  };
  int hashed_ = 0;

  bool IsMarked(int number) { return manifest_.Find(KeyOf(Picture(number), 1, "K1"))->deleted; }
};

TEST_F(DeletionsTest, DeletionsOfOneMomentAreMarkedTogether) {
  const SyncPlan plan = Plan({Picture(1), Picture(2)});
  RecordingCalls calls(path_);
  Deletions deletions(camera_, folder_, manifest_, hash_);
  EXPECT_EQ(deletions.Delete(plan.items[0]), "");
  EXPECT_EQ(deletions.Delete(plan.items[1]), "");
  deletions.Finish();
  EXPECT_TRUE(IsMarked(1) && IsMarked(2));
  const auto commits = calls.Log();
  EXPECT_EQ(std::count(commits.begin(), commits.end(), "commit"), 1);
}

TEST_F(DeletionsTest, EachFileIsComparedWithItsOwnRowAlsoWhenSomeAreLeftOut) {
  const SyncPlan plan = Plan({Picture(1), Picture(3), Picture(2)});
  const std::vector<const SyncItem*> items = {&plan.items[0], &plan.items[1], &plan.items[2]};
  Deletions deletions(camera_, folder_, manifest_, hash_);
  deletions.Expect(items);
  EXPECT_EQ(deletions.Delete(plan.items[1]),
            "100ABCDE/IMG_0003.JPG was not fetched, so the file on the camera was not deleted.");
  EXPECT_EQ(deletions.Delete(plan.items[2]), "");
  EXPECT_EQ(deletions.Delete(plan.items[0]), "") << "one that nobody expected any more";
}

/// What another program may do between the fetch and the deletion.
TEST_F(DeletionsTest, WhatIsNoLongerAsItWasFetchedStays) {
  const SyncPlan plan = Plan({Picture(1), Picture(2)});
  const std::string changed =
      "I:/DCIM/100ABCDE/IMG_0001.JPG is no longer what was fetched from there; it was not deleted, and `kelva get` "
      "fetches it as it is now.";
  const auto delete1 = [&] { return Deletions(camera_, folder_, manifest_, hash_).Delete(plan.items[0]); };
  camera_.catalogue = {Picture(2)};
  EXPECT_EQ(delete1(), changed) << "no entry";
  for (std::size_t i = 0; i < sizeof(DcfObj); ++i) {
    camera_.catalogue = {Picture(1)};
    reinterpret_cast<char*>(camera_.catalogue.data())[i] ^= 1;
    EXPECT_EQ(delete1(), changed) << "another entry, byte " << i;
  }
  EXPECT_EQ(hashed_, 0);
  camera_.catalogue = {Picture(1)};
  camera_.files["IMG_0001.JPG"] = "longer";
  EXPECT_EQ(delete1(), changed) << "another size";
  EXPECT_EQ(hashed_, 0);
  camera_.files["IMG_0001.JPG"] = "eno";
  EXPECT_EQ(delete1(), changed) << "another content";
  EXPECT_EQ(hashed_, 1);
  camera_.files["IMG_0001.JPG"] = "one";
  EXPECT_EQ(delete1(), "");
}

TEST_F(DeletionsTest, AFileThatIsAsItsKeySaysIsNotReadAgain) {
  const DcfObj picture = Picture(3, "fe05bcdcdc4928012781a5f1a2a77cbb5398e106");  // of "one"
  camera_.files["IMG_0003.JPG"] = "one";
  Run({}, {picture});
  const SyncPlan plan = Plan({picture});
  EXPECT_EQ(Deletions(camera_, folder_, manifest_, hash_).Delete(plan.items[0]), "");
  EXPECT_EQ(hashed_, 0);
}

TEST_F(DeletionsTest, AfterTheCameraWasGivenUpItsCatalogueAndListingsAreReadAgain) {
  const SyncPlan plan = Plan({Picture(1), Picture(2)});
  Deletions deletions(camera_, folder_, manifest_, hash_);
  EXPECT_EQ(deletions.Delete(plan.items[0]), "");
  camera_.catalogue = {Picture(2, "another")};
  EXPECT_EQ(deletions.Delete(plan.items[1]), "") << "one look at the catalogue in a turn";
  camera_.files["IMG_0002.JPG"] = "two";
  deletions.Renew();
  EXPECT_NE(deletions.Delete(plan.items[1]), "");
}

TEST_F(DeletionsTest, WhatWasDeletedIsMarkedAlsoWhenTheRunEnds) {
  const SyncPlan plan = Plan({Picture(1), Picture(2)});
  { EXPECT_EQ(Deletions(camera_, folder_, manifest_, hash_).Delete(plan.items[0]), ""); }
  EXPECT_TRUE(IsMarked(1));
  EXPECT_FALSE(IsMarked(2));
}

TEST_F(DeletionsTest, AFileThatWasNeverFetchedStays) {
  const SyncPlan plan = Plan({Picture(3)});
  EXPECT_EQ(Deletions(camera_, folder_, manifest_, hash_).Delete(plan.items[0]),
            "100ABCDE/IMG_0003.JPG was not fetched, so the file on the camera was not deleted.");
}

}  // namespace
}  // namespace apps
