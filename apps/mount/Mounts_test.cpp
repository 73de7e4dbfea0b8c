#include "apps/mount/Mounts.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

TEST(MountsTest, CamerasAreFoundAmongOtherMounts) {
  const auto mounts = MountsIn(
      "22 1 8:1 / / rw,relatime shared:1 - ext4 /dev/root rw\n"
      "90 22 0:52 / /mnt/a/Kelva\\040K1 ro,nosuid,nodev,relatime shared:7 master:2 - fuse.kelva Kelva\\040K1 ro\n"
      "91 22 0:53 / /mnt rw - fuse.other x rw\n"
      "broken - fuse.kelva\n"
      "92 22 0:54 / /a\\134b rw - fuse.kelva Kelva rw");
  ASSERT_EQ(mounts.size(), 2U);
  EXPECT_EQ(mounts[0].source, "Kelva K1");
  EXPECT_EQ(mounts[0].path, "/mnt/a/Kelva K1");
  EXPECT_EQ(mounts[1].path, "/a\\b");
}

TEST(MountsTest, TheSourceIsSafeInAListOfOptions) {
  EXPECT_EQ(SourceOf("K1"), "Kelva K1");
  EXPECT_EQ(SourceOf(""), "Kelva");
  EXPECT_EQ(SourceOf("a,b\\c/d"), "Kelva a%2Cb%5Cc%2Fd");
}

TEST(MountsTest, ThisMachineCanBeAsked) {
  EXPECT_NO_THROW(Mounts());
}

}  // namespace
}  // namespace apps
