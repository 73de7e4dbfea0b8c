#include "apps/commandline/Words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace apps {
namespace {

using testing::ElementsAre;

TEST(WordsTest, OneThingIsNotSaidInThePlural) {
  EXPECT_EQ(Counted(0, "file"), "0 files");
  EXPECT_EQ(Counted(1, "new picture"), "1 new picture");
  EXPECT_EQ(Counted(3213, "file"), "3213 files");
}

TEST(WordsTest, AnyByteStandsInAWord) {
  EXPECT_EQ(EncodedWord("100ABCDE/IMG_0001-2.JPG"), "100ABCDE/IMG_0001-2.JPG");
  EXPECT_EQ(EncodedWord("a b\t%\n\xFF"), "a%20b%09%25%0A%FF");
  EXPECT_EQ(DecodedWord("a%20b%09%25%0a%FF"), "a b\t%\n\xFF");
  EXPECT_EQ(DecodedWord("{year}/{name}, b"), "{year}/{name}, b");
  EXPECT_EQ(DecodedWord(""), "");
}

TEST(WordsTest, WhatIsNotEncodedIsNoWord) {
  for (const char* word : {"%", "a%2", "%G0", "%-1", "%+1", "% 1"}) EXPECT_EQ(DecodedWord(word), std::nullopt) << word;
  EXPECT_EQ(WordsIn("a\t%"), std::nullopt);
}

TEST(WordsTest, TabsSeparateWordsThatMayBeEmpty) {
  EXPECT_THAT(*WordsIn("target\t/srv/My%20pictures\t\t0"), ElementsAre("target", "/srv/My pictures", "", "0"));
  EXPECT_THAT(*WordsIn(""), ElementsAre(""));
}

// The examples of RFC 4648.
TEST(WordsTest, WholeLinesAreTakenAndTheRestStays) {
  std::string came = "one\n\ntw";
  std::vector<std::string> lines;
  TakeLines(came, [&](std::string_view line) { lines.emplace_back(line); });
  EXPECT_THAT(lines, testing::ElementsAre("one", ""));
  EXPECT_EQ(came, "tw");
}

TEST(WordsTest, Base64IsThatOfTheStandard) {
  EXPECT_EQ(Base64(""), "");
  EXPECT_EQ(Base64("f"), "Zg==");
  EXPECT_EQ(Base64("fo"), "Zm8=");
  EXPECT_EQ(Base64("foo"), "Zm9v");
  EXPECT_EQ(Base64("foob"), "Zm9vYg==");
  EXPECT_EQ(Base64("fooba"), "Zm9vYmE=");
  EXPECT_EQ(Base64("foobar"), "Zm9vYmFy");
  EXPECT_EQ(Base64("\xFB\xFF"), "+/8=");
}

}  // namespace
}  // namespace apps
