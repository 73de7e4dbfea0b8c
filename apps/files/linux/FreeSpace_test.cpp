// File systems that only Linux has.

#include "apps/files/FreeSpace.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

TEST(FreeSpaceOnLinuxTest, AFileSystemThatDoesNotCountSaysNothing) {
  EXPECT_EQ(FreeSpaceFor("/proc/self"), std::nullopt);
}

TEST(FreeSpaceOnLinuxTest, APathThatCannotBeLookedAtSaysNothing) {
  EXPECT_EQ(FreeSpaceFor("/proc/self/status/below"), std::nullopt);
}

}  // namespace
}  // namespace apps
