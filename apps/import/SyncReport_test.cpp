#include "apps/import/SyncReport.h"

#include <gtest/gtest.h>

#include "apps/commandline/testing/SilentContext.h"
#include "apps/import/testing/SyncTest.h"

namespace apps {
namespace {

class SyncReportTest : public SyncFolderTest, protected SilentContext {
 protected:
  WriteOutcome Outcome(const std::string& path, bool verified = false) const {
    const SyncItem& item = plan_.items[0];
    return {&item, ManifestRow{item.Key(), path, kKey, 3, verified, false}, false, ""};
  }

  static constexpr char kKey[] = "a9993e364706816aba3e25717850c26c9cd0d89d";
  const SyncPlan plan_ = Plan({Picture(1)});
  SyncReport report_{context_};
};

TEST_F(SyncReportTest, AFileThatWasReadOnceCountsAsReadTwiceWhenItIsDeleted) {
  report_.Stored(Outcome("100ABCDE/IMG_0001.JPG"));
  EXPECT_EQ(report_.Tally().sizeOnly, 1U);
  report_.Deleted(plan_.items[0]);
  const SyncTotals totals = report_.Tally().Now();
  EXPECT_EQ(totals.sizeOnly, 0U);
  EXPECT_EQ(totals.readTwice, 1U);
  EXPECT_EQ(totals.deleted, 1U);
}

TEST_F(SyncReportTest, OneThatWasReadTwiceIsNotCountedAgain) {
  report_.Stored(Outcome("100ABCDE/IMG_0001.JPG", true));
  report_.Deleted(plan_.items[0]);
  EXPECT_EQ(report_.Tally().readTwice, 1U);
}

TEST_F(SyncReportTest, ANameWithANumberIsCounted) {
  report_.Stored(Outcome("100ABCDE/IMG_0001-2.JPG"));
  EXPECT_EQ(report_.Tally().numbered, 1U);
}

TEST_F(SyncReportTest, AFailureIsSaidAndCounted) {
  report_.Fail(plan_.items[0], "The camera is tired.");
  EXPECT_EQ(Said(), "kelva: The camera is tired.\n");
  EXPECT_EQ(report_.Tally().failed, 1U);
  EXPECT_FALSE(report_.LeaveOut(plan_.items[0])) << "without other processes nothing is left out";
}

TEST_F(SyncReportTest, WhatSeveralFilesInARowHaveInCommonIsSaidOnce) {
  const SyncPlan plan = Plan({Picture(1), Picture(2), Picture(3)});
  report_.Fail(plan.items[0], "The folder is gone.");
  report_.Fail(plan.items[1], "The folder is gone.");
  report_.Fail(plan.items[2], "The camera is tired.");
  EXPECT_EQ(Said(), "kelva: The folder is gone.\nkelva: The camera is tired.\n");
  EXPECT_EQ(report_.Tally().failed, 3U);
}

}  // namespace
}  // namespace apps
