#include "base/Hex.h"

#include <gtest/gtest.h>

#include <array>

namespace base {
namespace {

TEST(HexTest, EachByteBecomesTwoSmallDigits) {
  EXPECT_EQ(Hex(std::string_view("\0\x7f\xff", 3)), "007fff");
  EXPECT_EQ(Hex(std::array<std::uint8_t, 3>{0x09, 0xA0, 0xFE}), "09a0fe");
  EXPECT_EQ(Hex(std::string_view()), "");
}

TEST(HexTest, APercentEscapeHasCapitalDigits) {
  EXPECT_EQ(PercentHex('/'), "%2F");
  EXPECT_EQ(PercentHex('\xE9'), "%E9");
  EXPECT_EQ(PercentHex('\0'), "%00");
}

}  // namespace
}  // namespace base
