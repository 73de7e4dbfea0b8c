#include "apps/import/SyncWork.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/import/testing/SyncFixture.h"

namespace apps {
namespace {

using testing::ElementsAre;

class SyncWorkTest : public SyncTest {
 protected:
  std::vector<const SyncItem*> Items() const {
    std::vector<const SyncItem*> items;
    for (const SyncItem& item : plan_.items) items.push_back(&item);
    return items;
  }
  void ForEach(const SyncWork::Each& work, const SyncWork::Each& before = nullptr) {
    work_.ForEach(Items(), {"reading", "read", before}, [&](const SyncItem& item) {
      done_.push_back(item.LocalText());
      if (work) work(item);
    });
  }

  const SyncPlan plan_ = Plan({Picture(1), Picture(2)});
  SyncWork work_{context_, Shared(camera_), {}, nullptr};
  std::vector<std::string> done_;
};

TEST_F(SyncWorkTest, AFileThatFailsIsReportedAndTheNextFollows) {
  ForEach([](const SyncItem& item) {
    if (item.LocalText() == "100ABCDE/IMG_0001.JPG") throw CameraError("broken");
  });
  EXPECT_THAT(done_, ElementsAre("100ABCDE/IMG_0001.JPG", "100ABCDE/IMG_0002.JPG"));
  EXPECT_EQ(work_.report.Tally().failed, 1U);
  EXPECT_THAT(Said(), testing::StartsWith("kelva: Cannot read I:/DCIM/100ABCDE/IMG_0001.JPG: "));
}

TEST_F(SyncWorkTest, ACameraThatHasGoneEndsAll) {
  EXPECT_THROW(ForEach([](const SyncItem&) { throw Gone(); }), CameraError);
  EXPECT_THAT(done_, ElementsAre("100ABCDE/IMG_0001.JPG"));
}

TEST_F(SyncWorkTest, AStopEndsItBeforeTheNextFile) {
  EXPECT_THROW(ForEach([this](const SyncItem&) { stop_.Request(); }), Stopped);
  EXPECT_EQ(done_.size(), 1U);
}

TEST_F(SyncWorkTest, WhatComesBeforeAFileIsAskedForEach) {
  ForEach(nullptr, [this](const SyncItem& item) { done_.push_back("before " + item.LocalText()); });
  EXPECT_THAT(done_, ElementsAre("before 100ABCDE/IMG_0001.JPG", "100ABCDE/IMG_0001.JPG",
                                 "before 100ABCDE/IMG_0002.JPG", "100ABCDE/IMG_0002.JPG"));
}

}  // namespace
}  // namespace apps
