#include "apps/mount/Keeper.h"

#include <gtest/gtest.h>
#include <signal.h>

namespace apps {
namespace {

TEST(KeeperTest, ItEndsWhenNothingIsMountedAnyMore) {
  pid_t process = 0;
  {
    const Keeper keeper("/nowhere/at-all", true);
    process = keeper.Process();
    EXPECT_EQ(::kill(process, 0), 0);
  }
  EXPECT_NE(::kill(process, 0), 0);
}

}  // namespace
}  // namespace apps
