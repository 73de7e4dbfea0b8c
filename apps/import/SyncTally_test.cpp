#include "apps/import/SyncTally.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <string>

namespace apps {
namespace {

TEST(SyncTallyTest, WithoutAGuardEachCountsForItself) {
  SyncTally one(nullptr);
  const SyncTally other(nullptr);
  ++one.stored;
  one.bytes += 7;
  EXPECT_EQ(one.Now().stored, 1U);
  EXPECT_EQ(one.Now().bytes, 7U);
  EXPECT_EQ(other.Now().stored, 0U);
}

TEST(SyncTallyTest, WhatIsNotStoredIsLeft) {
  EXPECT_EQ((SyncTotals{.expected = 5, .stored = 2, .failed = 1}).Left(), 3U);
  EXPECT_EQ((SyncTotals{.expected = 1, .stored = 2}).Left(), 0U);
}

TEST(SyncTallyDeathTest, AllProcessesOfAGuardCountTogether) {
  const auto work = [](Guard& guard) {
    SyncTally tally(&guard);
    guard.Begin("item", "A");
    if (++tally.deleted == 1) std::raise(SIGKILL);
    return static_cast<int>(tally.Now().deleted);
  };
  EXPECT_EXIT(std::_Exit(Guard::Run(work, [](const std::string&) {})), testing::ExitedWithCode(2), "");
}

}  // namespace
}  // namespace apps
