#include "apps/import/Deletions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "apps/files/testing/RecordingCalls.h"
#include "apps/import/testing/SyncFixture.h"

namespace apps {
namespace {

class DeletionsTest : public SyncTest {
 protected:
  DeletionsTest() { Run({.verify = true}, {Picture(1), Picture(2)}); }

  bool IsMarked(int number) { return manifest_.Find(KeyOf(Picture(number), 1, "K1"))->deleted; }
};

TEST_F(DeletionsTest, DeletionsOfOneMomentAreMarkedTogether) {
  const SyncPlan plan = Plan({Picture(1), Picture(2)});
  RecordingCalls calls(path_);
  Deletions deletions(camera_, folder_, manifest_);
  EXPECT_EQ(deletions.Delete(plan.items[0]), "");
  EXPECT_EQ(deletions.Delete(plan.items[1]), "");
  deletions.Finish();
  EXPECT_TRUE(IsMarked(1) && IsMarked(2));
  const auto commits = calls.Log();
  EXPECT_EQ(std::count(commits.begin(), commits.end(), "commit"), 1);
}

TEST_F(DeletionsTest, WhatWasDeletedIsMarkedAlsoWhenTheRunEnds) {
  const SyncPlan plan = Plan({Picture(1), Picture(2)});
  { EXPECT_EQ(Deletions(camera_, folder_, manifest_).Delete(plan.items[0]), ""); }
  EXPECT_TRUE(IsMarked(1));
  EXPECT_FALSE(IsMarked(2));
}

TEST_F(DeletionsTest, AFileThatWasNeverFetchedStays) {
  const SyncPlan plan = Plan({Picture(3)});
  EXPECT_EQ(Deletions(camera_, folder_, manifest_).Delete(plan.items[0]),
            "100ABCDE/IMG_0003.JPG was not fetched, so the file on the camera was not deleted.");
}

}  // namespace
}  // namespace apps
