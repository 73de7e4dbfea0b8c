#include "apps/desktop/Words.h"

#include <gtest/gtest.h>

namespace desktop {
namespace {

TEST(WordsTest, SizesHaveTwoOrThreeDigitsThatMatter) {
  EXPECT_EQ(SizeText(0), "0 bytes");
  EXPECT_EQ(SizeText(8100), "8 kB");
  EXPECT_EQ(SizeText(8123456), "8.1 MB");
  EXPECT_EQ(SizeText(412000000), "412 MB");
  EXPECT_EQ(SizeText(80000000000), "80.0 GB");
}

TEST(WordsTest, ANumberChoosesItsForm) {
  const EnglishNumbers english;
  const char* source = "%n (picture is|pictures are) here";
  EXPECT_EQ(english.translate("", source, nullptr, 1), "%n picture is here");
  EXPECT_EQ(english.translate("", source, nullptr, 2), "%n pictures are here");
  EXPECT_EQ(english.translate("", source, nullptr, 0), "%n pictures are here");
}

TEST(WordsTest, ATextThatDoesNotCountStaysAsItIs) {
  EXPECT_EQ(EnglishNumbers().translate("", "Import (%1)", nullptr, -1), "Import (%1)");
}

TEST(WordsTest, TimeLeftIsRounded) {
  EXPECT_EQ(TimeLeftText(-1), "");
  EXPECT_TRUE(TimeLeftText(10).contains("second"));
  EXPECT_TRUE(TimeLeftText(100).contains("minute"));
  EXPECT_TRUE(TimeLeftText(7200).contains("hour"));
}

}  // namespace
}  // namespace desktop
