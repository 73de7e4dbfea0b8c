#include "apps/commandline/Json.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace apps {
namespace {

TEST(JsonTest, MembersKeepTheirOrder) {
  EXPECT_EQ(Json::Object().Set("b", 1).Set("a", "x").Set("c", true).Set("d", Json()).Text(),
            R"({"b":1,"a":"x","c":true,"d":null})");
}

TEST(JsonTest, NestedValuesArePrintedInPlace) {
  Json list = Json::Array();
  list.Push(Json::Object().Set("n", -7)).Push(2.5);
  EXPECT_EQ(Json::Object().Set("list", std::move(list)).Set("none", Json::Array()).Text(),
            R"({"list":[{"n":-7},2.5],"none":[]})");
}

TEST(JsonTest, AListMadeWhileItIsPrintedLooksLikeAnother) {
  const Json list = Json::ArrayFrom([](const Json::Give& give) {
    give(1);
    give(Json::Object().Set("a", "b"));
  });
  EXPECT_EQ(Json::Object().Set("list", list).Set("last", 2).Text(), R"({"list":[1,{"a":"b"}],"last":2})");
  EXPECT_EQ(Json::ArrayFrom([](const Json::Give&) {}).Text(), "[]");
}

void ExpectPieces(const Json& list) {
  const Json document = Json::Object().Set("list", list).Set("last", 2);
  std::string whole;
  std::size_t longest = 0;
  document.Print([&](std::string_view piece) {
    longest = std::max(longest, piece.size());
    whole += piece;
  });
  EXPECT_LT(longest, 140'000U);
  EXPECT_EQ(whole.size(), 1'003'019U);  // 1,000 words with quotes, 999 commas, and {"list":[],"last":2}
  EXPECT_EQ(whole, document.Text());
}

TEST(JsonTest, ALongListIsPrintedInPieces) {
  const std::string word(1000, 'x');
  ExpectPieces(Json::ArrayFrom([&word](const Json::Give& give) {
    for (int i = 0; i < 1000; ++i) give(word);
  }));
  Json list = Json::Array();
  for (int i = 0; i < 1000; ++i) list.Push(word);
  ExpectPieces(list);
}

TEST(JsonTest, LargestNumbersAreExact) {
  EXPECT_EQ(Json(std::numeric_limits<std::uint64_t>::max()).Text(), "18446744073709551615");
  EXPECT_EQ(Json(std::numeric_limits<std::int64_t>::min()).Text(), "-9223372036854775808");
}

TEST(JsonTest, NumbersThatAreNotFiniteAreNull) {
  EXPECT_EQ(Json(std::numeric_limits<double>::infinity()).Text(), "null");
  EXPECT_EQ(Json(std::numeric_limits<double>::quiet_NaN()).Text(), "null");
}

TEST(JsonTest, TextIsEscaped) {
  EXPECT_EQ(Json("a\"b\\c\n\t\x01\x7f").Text(), R"("a\"b\\c\n\t\u0001\u007f")");
}

TEST(JsonTest, TerminalControlsOfTheUpperSetAreEscaped) {
  EXPECT_EQ(Json("\xC2\x9B[2J").Text(), R"("\u009b[2J")");
}

TEST(JsonTest, CharactersThatTurnTheDirectionOfTextAreEscaped) {
  EXPECT_EQ(Json("\xE2\x80\xAEgpj\xEF\xBB\xBF").Text(), R"("\u202egpj\ufeff")");
}

TEST(JsonTest, BytesThatAreNoUtf8AreReplacedAndKeptInHexadecimal) {
  EXPECT_EQ(Json::Object().SetBytes("name", "A\xFFZ").Text(), "{\"name\":\"A\xEF\xBF\xBDZ\",\"name_hex\":\"41ff5a\"}");
}

TEST(JsonTest, BytesThatAreUtf8NeedNoSecondForm) {
  EXPECT_EQ(Json::Object().SetBytes("name", "\xC3\xA9").Text(), "{\"name\":\"\xC3\xA9\"}");
}

TEST(JsonTest, MergeAddsTheMembersOfAnotherObject) {
  EXPECT_EQ(Json::Object().Set("a", 1).Merge(Json::Object().Set("b", 2)).Text(), R"({"a":1,"b":2})");
}

TEST(JsonTest, WhatWasPrintedBeforeStaysAsItIs) {
  EXPECT_EQ(Json::Array().Push(1).PushPrinted(R"({"b":[1]})").Push(2).Text(), R"([1,{"b":[1]},2])");
}

TEST(JsonTest, AnObjectKnowsItsMembers) {
  const Json object = std::move(Json::Object().Set("reason", "gone"));
  EXPECT_TRUE(object.Has("reason"));
  EXPECT_FALSE(object.Has("error"));
}

}  // namespace
}  // namespace apps
