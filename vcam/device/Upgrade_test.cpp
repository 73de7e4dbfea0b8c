#include "vcam/device/Upgrade.h"

#include <gmock/gmock.h>

namespace vcam {
namespace {

using std::chrono::milliseconds;

const Upgrade::Time kStart{};
const base::Bytes kAbc{'a', 'b', 'c'};

// The 12 bytes of the status: progress 0.25, 0.5, 0.75 and 1 as floats, then the two flags.
const base::Bytes kQuarterRunning{0, 0, 0x80, 0x3E, 1, 0, 0, 0, 0, 0, 0, 0};
const base::Bytes kHalfRunning{0, 0, 0x00, 0x3F, 1, 0, 0, 0, 0, 0, 0, 0};
const base::Bytes kThreeQuartersRunning{0, 0, 0x40, 0x3F, 1, 0, 0, 0, 0, 0, 0, 0};
const base::Bytes kThreeQuartersFailed{0, 0, 0x40, 0x3F, 0, 0, 0, 0, 1, 0, 0, 0};
const base::Bytes kDone{0, 0, 0x80, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0};

TEST(Upgrade, HasNothingToTellAtFirst) {
  EXPECT_EQ(Upgrade().Status(kStart), base::Bytes(12));
  EXPECT_EQ(Upgrade().Firmware(kStart), "");
}

TEST(Upgrade, ReportsReceivingAndThenWriting) {
  Upgrade upgrade;
  upgrade.Start(6);
  ASSERT_TRUE(upgrade.Receive(0, kAbc));
  EXPECT_EQ(upgrade.Status(kStart), kQuarterRunning);
  ASSERT_TRUE(upgrade.Receive(3, kAbc));
  ASSERT_TRUE(upgrade.Finish(kStart, milliseconds(100), false));
  EXPECT_EQ(upgrade.Status(kStart), kHalfRunning);
  EXPECT_TRUE(upgrade.Writing(kStart));
  EXPECT_EQ(upgrade.Status(kStart + milliseconds(50)), kThreeQuartersRunning);
  EXPECT_EQ(upgrade.Status(kStart + milliseconds(100)), kDone);
  EXPECT_FALSE(upgrade.Writing(kStart + milliseconds(100)));
}

TEST(Upgrade, TakesTheTimeThatItIsGivenAndNoneWithoutAny) {
  for (const int time : {0, 1}) {
    Upgrade upgrade;
    upgrade.Start(3);
    ASSERT_TRUE(upgrade.Receive(0, kAbc));
    ASSERT_TRUE(upgrade.Finish(kStart, milliseconds(time), false));
    EXPECT_EQ(upgrade.Status(kStart), time == 0 ? kDone : kHalfRunning);
    EXPECT_EQ(upgrade.Status(kStart + milliseconds(time)), kDone);
  }
}

TEST(Upgrade, NamesTheFirmwareAfterItsImage) {
  Upgrade upgrade;
  upgrade.Start(3);
  ASSERT_TRUE(upgrade.Receive(0, kAbc));
  ASSERT_TRUE(upgrade.Finish(kStart, milliseconds(100), false));
  EXPECT_EQ(upgrade.Firmware(kStart + milliseconds(99)), "");
  EXPECT_EQ(upgrade.Firmware(kStart + milliseconds(100)), "a9993e364706");
}

TEST(Upgrade, NamesTheNextFirmwareAfterTheNextImageAlone) {
  Upgrade upgrade;
  for (const char* name : {"a9993e364706", "86f7e437faa5"}) {  // of "abc", and then of "a"
    const base::Bytes image(kAbc.begin(), name[0] == 'a' ? kAbc.end() : kAbc.begin() + 1);
    upgrade.Start(static_cast<std::uint32_t>(image.size()));
    ASSERT_TRUE(upgrade.Receive(0, image));
    ASSERT_TRUE(upgrade.Finish(kStart, milliseconds(100), false));
    EXPECT_EQ(upgrade.Firmware(kStart + milliseconds(100)), name);
  }
}

TEST(Upgrade, FailsHalfWayWhenItIsDoomed) {
  Upgrade upgrade;
  upgrade.Start(3);
  ASSERT_TRUE(upgrade.Receive(0, kAbc));
  ASSERT_TRUE(upgrade.Finish(kStart, milliseconds(100), true));
  EXPECT_EQ(upgrade.Status(kStart + milliseconds(1000)), kThreeQuartersFailed);
  EXPECT_EQ(upgrade.Firmware(kStart + milliseconds(1000)), "");
}

TEST(Upgrade, FailsWhenTheImageIsEmptyOrIncomplete) {
  for (const std::uint32_t length : {0U, 4U}) {
    Upgrade upgrade;
    upgrade.Start(length);
    upgrade.Receive(0, base::Bytes(length / 2));
    ASSERT_TRUE(upgrade.Finish(kStart, milliseconds(100), false));
    EXPECT_EQ(upgrade.Status(kStart)[8], 1) << length;
    EXPECT_EQ(upgrade.Status(kStart)[4], 0) << length;
  }
}

TEST(Upgrade, TakesChunksInOrderOnly) {
  Upgrade upgrade;
  EXPECT_FALSE(upgrade.Receive(0, kAbc)) << "before it was announced";
  upgrade.Start(4);
  EXPECT_FALSE(upgrade.Receive(1, kAbc));
  EXPECT_TRUE(upgrade.Receive(0, kAbc));
  EXPECT_FALSE(upgrade.Receive(0, kAbc));
  EXPECT_FALSE(upgrade.Receive(3, kAbc)) << "more than was announced";
}

TEST(Upgrade, CannotEndBeforeItWasAnnounced) {
  EXPECT_FALSE(Upgrade().Finish(kStart, milliseconds(1), false));
}

TEST(Upgrade, CountsAsFailedWhenItIsAbandoned) {
  Upgrade upgrade;
  upgrade.Start(4);
  upgrade.Abandon();
  EXPECT_EQ(upgrade.Status(kStart)[8], 1);
}

}  // namespace
}  // namespace vcam
