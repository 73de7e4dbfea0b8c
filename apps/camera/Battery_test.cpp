#include "apps/camera/Battery.h"

#include <gtest/gtest.h>

#include <limits>

namespace apps {
namespace {

TEST(BatteryTest, ALevelIsShownAsANumber) {
  EXPECT_EQ(LevelText(0), "0");
  EXPECT_EQ(LevelText(0.75F), "0.75");
  EXPECT_EQ(LevelText(87.5F), "87.5");
  EXPECT_EQ(LevelText(3700), "3700");
}

TEST(BatteryTest, WhatCannotBeALevelIsShownAsItsBits) {
  EXPECT_EQ(LevelText(-1), "0xbf800000");
  EXPECT_EQ(LevelText(1e-20F), "0x1e3ce508");
  EXPECT_EQ(LevelText(1e20F), "0x60ad78ec");
  EXPECT_EQ(LevelText(std::numeric_limits<float>::infinity()), "0x7f800000");
  EXPECT_EQ(LevelText(std::numeric_limits<float>::quiet_NaN()), "0x7fc00000");
}

TEST(BatteryTest, TheBitsAreThereForEveryLevel) {
  EXPECT_EQ(LevelBits(0.75F), "0x3f400000");
}

}  // namespace
}  // namespace apps
