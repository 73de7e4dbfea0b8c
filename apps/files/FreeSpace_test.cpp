#include "apps/files/FreeSpace.h"

#include <gtest/gtest.h>

#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

TEST(FreeSpaceTest, AFolderThatDoesNotExistYetHasTheRoomOfTheOneAboveIt) {
  const base::ScratchFolder scratch;
  const auto here = FreeSpace(TargetFolder::Open(scratch.Path()));
  const auto below = FreeSpaceFor(scratch.Path().string() + "/new/deep/er/");
  // Other programs write to this file system meanwhile.
  EXPECT_NEAR(static_cast<double>(here.value_or(0)), static_cast<double>(below.value_or(0)), 1e10);
}

}  // namespace
}  // namespace apps
