#include "apps/doctor/linux/Mounts.h"

#include <gtest/gtest.h>

namespace apps::doctor {
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

TEST(MountsTest, AMountThatNobodyAnswersForIsInTheWay) {
  const std::vector<MountedCamera> mounts = {{"Kelva K1", "/mnt/it's"}, {"Kelva", "/mnt/b"}};
  const auto findings = FindingsAbout(mounts, [](const MountedCamera& mount) { return mount.source == "Kelva K1"; });
  ASSERT_EQ(findings.size(), 2U);
  EXPECT_EQ(findings[0].condition, Condition::kLeftMount);
  EXPECT_FALSE(IsHarmless(findings[0].condition));
  EXPECT_EQ(findings[0].serial, "K1");
  EXPECT_EQ(findings[0].command, "fusermount3 -uz '/mnt/it'\\''s'");
  EXPECT_EQ(findings[1].condition, Condition::kMounted);
  EXPECT_TRUE(IsHarmless(findings[1].condition));
  EXPECT_EQ(findings[1].sentence, "A camera is mounted on /mnt/b.");
}

TEST(MountsTest, TheBusOfAVirtualCameraIsNoPartOfItsSerialNumber) {
  const auto findings = FindingsAbout({{"Kelva K1 of %2Ftmp%2Fbus", "/a"}}, [](const MountedCamera&) { return false; });
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0].serial, "K1");
  EXPECT_EQ(findings[0].sentence, "Camera K1 is mounted on /a.");
}

TEST(MountsTest, AFolderThatIsThereIsNotLeftOver) {
  EXPECT_FALSE(IsLeftOver({"Kelva K1", "/"}));
  EXPECT_FALSE(IsLeftOver({"Kelva K1", "/nowhere"}));
}

TEST(MountsTest, ThisMachineCanBeAsked) {
  EXPECT_NO_THROW(Mounts());
}

}  // namespace
}  // namespace apps::doctor
