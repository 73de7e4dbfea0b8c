#include "platform/Processors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace platform {
namespace {

TEST(ProcessorsTest, AThreadStaysOnTheProcessorThatItHas) {
  const std::vector<int> before = Processors();
  {
    const OwnProcessor own(before.size() + 1);
    EXPECT_EQ(Processors().size(), std::min(before.size(), std::size_t{1}));
  }
  EXPECT_EQ(Processors(), before);
}

TEST(ProcessorsTest, OtherThreadsLeaveItAlone) {
  const std::vector<int> before = Processors();
  const OwnProcessor own(before.size() + 1);
  const std::vector<int> mine = Processors();
  std::vector<int> others;
  std::thread([&] {
    own.KeepOff();
    others = Processors();
  }).join();
  if (before.size() < 2) {
    EXPECT_EQ(others, before);
    return;
  }
  ASSERT_EQ(mine.size(), 1U);
  EXPECT_EQ(others.size(), before.size() - 1);
  EXPECT_EQ(std::ranges::count(others, mine.front()), 0);
}

TEST(ProcessorsTest, NothingChangesWhereThereIsAProcessorForEachThread) {
  const std::vector<int> before = Processors();
  const OwnProcessor own(before.size());
  EXPECT_EQ(Processors(), before);
  own.KeepOff();
  EXPECT_EQ(Processors(), before);
}

TEST(ProcessorsTest, AProgramThatIsStartedMayUseAll) {
  const std::vector<int> before = Processors();
  const OwnProcessor own(before.size() + 1);
  const std::vector<int> mine = Processors();
  {
    const NoOwnProcessor none;
    EXPECT_EQ(Processors(), before);
  }
  EXPECT_EQ(Processors(), mine);
}

TEST(ProcessorsTest, WithoutAnOwnProcessorNothingIsGivenBack) {
  const std::vector<int> before = Processors();
  const NoOwnProcessor none;
  EXPECT_EQ(Processors(), before);
}

}  // namespace
}  // namespace platform
