#include "apps/kelva/verbs/Number.h"

#include <gtest/gtest.h>

#include <limits>

namespace apps {
namespace {

TEST(NumberTest, SinglePrecisionReadsAsItIsMeant) {
  EXPECT_EQ(Shortest(0.87F), "0.87");
  EXPECT_EQ(NumberOf(0.87F).Text(), "0.87");
  EXPECT_EQ(Shortest(0.008), "0.008");
}

TEST(NumberTest, WhatIsNotFiniteIsShownAndIsNullForScripts) {
  EXPECT_EQ(Shortest(std::numeric_limits<float>::infinity()), "inf");
  EXPECT_EQ(NumberOf(std::numeric_limits<float>::quiet_NaN()).Text(), "null");
}

}  // namespace
}  // namespace apps
