#include "apps/mount/Work.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

using namespace std::chrono_literals;

Job Read(std::uint64_t file, std::uint64_t offset) {
  return {file, offset, [] {}, [](int) {}};
}

TEST(WorkTest, OfOneFileTheEarliestPartComesFirst) {
  Work work;
  work.Put(Read(1, 0));
  work.Put(Read(2, 4));
  work.Put(Read(2, 3));
  EXPECT_TRUE(work.HasOther(2));
  EXPECT_EQ(work.TakeOf(2)->offset, 3U);
  EXPECT_EQ(work.Take()->file, 1U);
  EXPECT_FALSE(work.HasOther(2));
  EXPECT_FALSE(work.TakeOf(1));
  work.Put(Read(2, 1));
  EXPECT_EQ(work.Take()->offset, 1U);
  EXPECT_EQ(work.Take()->offset, 4U);
  EXPECT_FALSE(work.Take());
}

TEST(WorkTest, OtherRequestsKeepTheirOrder) {
  Work work;
  work.Put(Read(0, 9));
  work.Put(Read(0, 1));
  EXPECT_EQ(work.Take()->offset, 9U);
  EXPECT_EQ(work.TakeAll().size(), 1U);
}

TEST(WorkTest, TheEndWakesWhoeverWaits) {
  Work work;
  EXPECT_FALSE(work.WaitFor(0ms));
  work.Nudge();
  EXPECT_TRUE(work.WaitFor(0ms));
  EXPECT_FALSE(work.Take());
  EXPECT_FALSE(work.WaitFor(0ms));
  work.End();
  work.Wait();
  EXPECT_TRUE(work.HasEnded());
}

}  // namespace
}  // namespace apps
