#include "vcam/device/LayoutByName.h"

#include <gtest/gtest.h>

namespace vcam {
namespace {

TEST(LayoutByName, KnowsEachLayout) {
  EXPECT_EQ(LayoutByName("standard").value().stride, 128U);
  EXPECT_EQ(LayoutByName("reordered").value().fields.front().type, 9U);
  EXPECT_EQ(LayoutByName("unknown-fields").value().stride, 144U);
  EXPECT_EQ(LayoutByName("wide").value().stride, 200U);
}

TEST(LayoutByName, FindsNothingForAnyOtherName) {
  EXPECT_FALSE(LayoutByName("odd"));
  EXPECT_FALSE(LayoutByName(""));
}

}  // namespace
}  // namespace vcam
