#include "darwin/cf/MacRoman.h"

#include <gtest/gtest.h>

namespace darwin::cf {
namespace {

TEST(MacRoman, ItsUpperHalfIsWrittenWithTwoOrThreeBytes) {
  EXPECT_EQ(Utf8FromMacRoman("A\x80\xA5\xFF"), "A\xC3\x84\xE2\x80\xA2\xCB\x87");  // A, A with dots, bullet, caron
  EXPECT_EQ(MacRomanFromUtf8("A\xC3\x84\xE2\x80\xA2\xCB\x87"), "A\x80\xA5\xFF");
}

TEST(MacRoman, HasNoOtherCharacter) {
  EXPECT_EQ(MacRomanFromUtf8("\xC4\x80"), std::nullopt);          // U+0100
  EXPECT_EQ(MacRomanFromUtf8("\xF0\x9F\x93\xB7"), std::nullopt);  // U+1F4F7
}

TEST(MacRoman, CharactersOfEveryLengthAreUtf8) {
  EXPECT_TRUE(IsUtf8(""));
  EXPECT_TRUE(IsUtf8("\x7F"));
  EXPECT_TRUE(IsUtf8("\xC2\x80\xDF\xBF"));                  // U+0080, U+07FF
  EXPECT_TRUE(IsUtf8("\xE0\xA0\x80\xEF\xBF\xBF"));          // U+0800, U+FFFF
  EXPECT_TRUE(IsUtf8("\xED\x9F\xBF\xEE\x80\x80"));          // U+D7FF, U+E000
  EXPECT_TRUE(IsUtf8("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"));  // U+10000, U+10FFFF
}

TEST(MacRoman, WhatIsTooLongTooShortOrNoCharacterIsNotUtf8) {
  for (const char* text : {"\x80", "\xC2", "\xE2\x80", "\xF0\x9F\x93", "\xC2\x20", "\xC2\xC0", "\xFF"}) {
    EXPECT_FALSE(IsUtf8(text)) << text;
  }
  for (const char* overlong : {"\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF"}) EXPECT_FALSE(IsUtf8(overlong));
  for (const char* surrogate : {"\xED\xA0\x80", "\xED\xBF\xBF"}) EXPECT_FALSE(IsUtf8(surrogate));
  for (const char* beyond : {"\xF4\x90\x80\x80", "\xF5\x80\x80\x80"}) EXPECT_FALSE(IsUtf8(beyond));
}

}  // namespace
}  // namespace darwin::cf
