#include "apps/camera/WaitingLine.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

class WaitingLineTest : public testing::Test {
 protected:
  WaitingLine At(const std::string& camera) const { return WaitingLine(LinePlace{folder_.Path().string(), camera}); }

  // So that two places differ in time.
  static void JoinLater(WaitingLine& line) {
    const auto now = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() < now + std::chrono::microseconds(10)) {
    }
    line.Join();
  }

  base::ScratchFolder folder_;
};

TEST_F(WaitingLineTest, WhoComesFirstIsFirst) {
  WaitingLine one = At("K1");
  WaitingLine two = At("K1");
  EXPECT_FALSE(one.IsAwaited());
  one.Join();
  JoinLater(two);
  EXPECT_TRUE(one.IsFirst());
  EXPECT_FALSE(two.IsFirst());
  one.Leave();
  EXPECT_TRUE(two.IsFirst());
}

TEST_F(WaitingLineTest, WhoJoinsAgainIsLast) {
  WaitingLine one = At("K1");
  WaitingLine two = At("K1");
  one.Join();
  JoinLater(two);
  one.Leave();
  JoinLater(one);
  EXPECT_TRUE(two.IsFirst());
  EXPECT_FALSE(one.IsFirst());
}

TEST_F(WaitingLineTest, AHolderSeesThatSomebodyWaits) {
  const WaitingLine holder = At("K1");
  WaitingLine waiter = At("K1");
  waiter.Join();
  EXPECT_TRUE(holder.IsAwaited());
  EXPECT_FALSE(waiter.IsAwaited()) << "by itself";
  waiter.Leave();
  EXPECT_FALSE(holder.IsAwaited());
}

TEST_F(WaitingLineTest, EachCameraHasALineOfItsOwn) {
  WaitingLine one = At("K1");
  WaitingLine other = At("K2");
  one.Join();
  JoinLater(other);
  EXPECT_TRUE(other.IsFirst());
  EXPECT_FALSE(At("K3").IsAwaited());
}

TEST_F(WaitingLineTest, AHolderSaysThatItTakesLong) {
  WaitingLine holder = At("K1");
  WaitingLine waiter = At("K1");
  waiter.Join();
  EXPECT_FALSE(waiter.IsHeldForLong());
  holder.HoldForLong(true);
  EXPECT_TRUE(waiter.IsHeldForLong());
  EXPECT_FALSE(holder.IsHeldForLong()) << "by another";
  EXPECT_TRUE(waiter.IsFirst()) << "the mark is no place";
  holder.HoldForLong(false);
  EXPECT_FALSE(waiter.IsHeldForLong());
}

TEST_F(WaitingLineTest, AProcessThatIsKilledLeavesTheLine) {
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    WaitingLine line = At("K1");
    line.Join();
    line.HoldForLong(true);
    [[maybe_unused]] const ssize_t written = ::write(ready[1], "r", 1);
    ::pause();
    ::_exit(0);
  }
  char byte = 0;
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  const WaitingLine line = At("K1");
  EXPECT_TRUE(line.IsAwaited());
  EXPECT_TRUE(line.IsHeldForLong());
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_FALSE(line.IsAwaited());
  EXPECT_FALSE(line.IsHeldForLong());
  ::close(ready[0]);
  ::close(ready[1]);
}

TEST_F(WaitingLineTest, WithoutAPlaceEverybodyIsFirst) {
  WaitingLine nowhere(LinePlace{"/nowhere/at/all", "K1"});
  WaitingLine none;
  for (WaitingLine* line : {&nowhere, &none}) {
    line->Join();
    line->HoldForLong(true);
    EXPECT_TRUE(line->IsFirst());
    EXPECT_FALSE(line->IsAwaited());
    EXPECT_FALSE(line->IsHeldForLong());
    line->Leave();
  }
}

TEST_F(WaitingLineTest, LeavesNothingBehind) {
  WaitingLine line = At("K1");
  line.Join();
  line.Leave();
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Path()));
}

}  // namespace
}  // namespace apps
