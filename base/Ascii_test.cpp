#include "base/Ascii.h"

#include <gtest/gtest.h>

namespace base {
namespace {

TEST(AsciiTest, OnlyLettersChangeTheirCase) {
  EXPECT_EQ(Lower(std::string("@AZ[`az{09\\_")), "@az[`az{09\\_");
  EXPECT_EQ(Upper(std::string("@AZ[`az{09\\_")), "@AZ[`AZ{09\\_");
}

TEST(AsciiTest, BytesAboveAsciiStay) {
  EXPECT_EQ(Lower(std::string("\xC3\x84\xFF")), "\xC3\x84\xFF");
  EXPECT_EQ(Upper(std::string("\xC3\xA4\xFF")), "\xC3\xA4\xFF");
}

TEST(Ascii, AShapeHasDigitsWhereItHasZeros) {
  EXPECT_TRUE(HasShape("2026-03-14", "0000-00-00"));
  EXPECT_FALSE(HasShape("2026-03-1", "0000-00-00"));
  EXPECT_FALSE(HasShape("2026-03-1x", "0000-00-00"));
  EXPECT_FALSE(HasShape("2026:03-14", "0000-00-00"));
}

}  // namespace
}  // namespace base
