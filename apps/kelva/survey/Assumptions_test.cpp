#include "apps/kelva/survey/Assumptions.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "src/wifi/testing/Bytes.h"

namespace apps::survey {
namespace {

using namespace std::chrono_literals;
using wifi_testing::Bytes;
using wifi_testing::Field;
using wifi_testing::Le32;

DataSet Set(std::uint32_t announced, std::size_t arrived, bool whole = true) {
  return {announced, std::string(arrived, 'x'), whole};
}

TEST(Assumptions, TheInformationRecordHasItsLengthAndAtMostOneByteMoreThanAnnounced) {
  EXPECT_EQ(JudgeInformationSize(Set(644, 644), Set(644, 644)).holds, true);
  EXPECT_EQ(JudgeInformationSize(Set(643, 644), Set(643, 644)).holds, true);
  EXPECT_EQ(JudgeInformationSize(Set(642, 644), Set(642, 644)).holds, false);
  EXPECT_EQ(JudgeInformationSize(Set(644, 600), Set(644, 600)).holds, false);
  const Assumption longer = JudgeInformationSize(Set(1000, 644), Set(1000, 1000));
  EXPECT_EQ(longer.seen, "1000 bytes announced, 644 came; 1000 when more were asked for");
}

TEST(Assumptions, InformationIsTextsThatTheSystemKnows) {
  const std::string texts = Field(std::string("K1\0Kelva\0C\0001\0f\0v", 16), 644);
  EXPECT_EQ(JudgeInformationTexts(texts, {"K1", "Kelva", "", "", ""}).holds, true);
  EXPECT_EQ(JudgeInformationTexts(texts, {"K2", "Kelva", "", "", ""}).holds, false);
  EXPECT_EQ(JudgeInformationTexts("\xFF", {"K1", "Kelva", "", "", ""}).seen, "no texts");
}

TEST(Assumptions, TheClockTicksInItsLayout) {
  const std::string first = Bytes({0xEA, 7, 3, 0, 14, 0, 15, 0, 9, 0, 26, 0, 0x17, 2});
  const std::string second = Bytes({0xEA, 7, 3, 0, 14, 0, 15, 0, 9, 0, 27, 0, 0x17, 2});
  const Assumption holds = JudgeClock(first, second, 1s);
  EXPECT_EQ(holds.holds, true);
  EXPECT_EQ(holds.seen, "2026-03-14T15:09:26.535, then 2026-03-14T15:09:27.535");
  EXPECT_EQ(JudgeClock(first, second, 1999ms).holds, true) << "whole seconds";
  EXPECT_EQ(JudgeClock(first, second, 2001ms).holds, false);
  EXPECT_EQ(JudgeClock(first, first, 900ms).holds, false) << "it stands still";
  EXPECT_EQ(JudgeClock(second, first, 1s).holds, false) << "backwards";
  EXPECT_EQ(JudgeClock(first, "short", 1s).holds, false);
  EXPECT_EQ(JudgeClock(std::string(14, '\xFF'), second, 1s).seen,
            "ffffffffffffffffffffffffffff, then ea0703000e000f0009001b001702");
}

TEST(Assumptions, TheBatteryLevelIsPerCent) {
  EXPECT_EQ(JudgeBattery(Bytes({0, 0, 0xC8, 0x42})).holds, true);
  EXPECT_EQ(JudgeBattery(Bytes({0, 0, 0xC8, 0x42})).seen, "100 (0x42c80000)");
  EXPECT_EQ(JudgeBattery(Bytes({0, 0, 0x40, 0x3F})).holds, false) << "0.75";
  EXPECT_EQ(JudgeBattery(Bytes({0, 0, 0xC0, 0x7F})).holds, false) << "not a number";
  EXPECT_EQ(JudgeBattery("abc").seen, "3 bytes came");
}

std::string Header(int version, int stride, const std::vector<std::array<unsigned, 2>>& fields) {
  std::string bytes = Le32(static_cast<unsigned>(version)) + Le32(static_cast<unsigned>(stride)) +
                      Le32(static_cast<unsigned>(fields.size()));
  for (const auto& [type, offset] : fields) bytes += Le32(type) + Le32(offset);
  return bytes;
}

TEST(Assumptions, TheCatalogueHasAllTypes) {
  std::vector<std::array<unsigned, 2>> fields;
  for (unsigned type = 0; type < 10; ++type) fields.push_back({type, 4 * type});
  EXPECT_EQ(JudgeCatalogueFields({0, Header(1, 128, fields), true}).holds, true);
  EXPECT_EQ(JudgeCatalogueFields({0, Header(2, 128, fields), true}).holds, false);
  fields.pop_back();
  fields.push_back({77, 4});
  EXPECT_EQ(JudgeCatalogueFields({0, Header(1, 128, fields), true}).holds, false);
  EXPECT_EQ(JudgeCatalogueFields({0, Header(1, 40, {{0, 0}, {1, 24}}), true}).seen,
            "version 1, 40 bytes a picture; types 0 at 0, 1 at 24");
}

TEST(Assumptions, ACatalogueThatClaimsMoreThanItHasIsNoneAndHasNoHead) {
  std::string liar = Header(1, 128, {{0, 0}});
  liar[8] = 100;
  EXPECT_EQ(JudgeCatalogueFields({0, liar, true}).seen, "no whole header in 20 bytes");
  EXPECT_EQ(CatalogueHead(liar, 8), "");
  EXPECT_EQ(CatalogueHead("short", 8), "");
  EXPECT_EQ(CatalogueHead(Header(1, -5, {{0, 0}}) + "more", 8), "");
}

TEST(Assumptions, TheHeadHasWholeRecordsAlone) {
  const std::string header = Header(1, 4, {{0, 0}});
  EXPECT_EQ(CatalogueHead(header + "AAAABBBBCC", 8), header + "AAAABBBB");
  EXPECT_EQ(CatalogueHead(header + "AAAABBBBCC", 1), header + "AAAA");
  const std::string empty = Header(1, 0, {});
  EXPECT_EQ(CatalogueHead(empty + "AAAA", 8), empty);
}

DcfObj Picture(const std::string& key, const std::string& time) {
  DcfObj picture{};
  std::memcpy(picture.block7, key.data(), key.size());
  std::memcpy(picture.block8, time.data(), time.size());
  return picture;
}

TEST(Assumptions, PicturesHaveTimesAndKeys) {
  const std::string key(40, 'a');
  const std::array both{Picture(key, "2026-03-14 15:09:26"), Picture("no", "no")};
  EXPECT_EQ(JudgeDates(std::span(both).first(1)).holds, true);
  EXPECT_EQ(JudgeDates(both).holds, false);
  EXPECT_EQ(JudgeDates(both).seen, "1 of 2 pictures have a time");
  EXPECT_EQ(JudgeDates({}).holds, std::nullopt);
  EXPECT_EQ(JudgeKeyShape(std::span(both).first(1)).holds, true);
  EXPECT_EQ(JudgeKeyShape(both).seen, "1 of 2 pictures have a key");
}

TEST(Assumptions, TheKeyIsTheSha1OfTheFirstFile) {
  // The SHA-1 of "abc", as its standard gives it.
  const DcfObj picture = Picture("a9993e364706816aba3e25717850c26c9cd0d89d", "");
  EXPECT_EQ(JudgeKey(picture, {3, "abc", true}).holds, true);
  EXPECT_EQ(JudgeKey(picture, {3, "abcX", true}).holds, true);
  EXPECT_EQ(JudgeKey(picture, {3, "abcX", false}).holds, true);
  EXPECT_EQ(JudgeKey(picture, {3, "abd", true}).holds, false);
  EXPECT_EQ(JudgeKey(picture, {3, "ab", true}).holds, false);
  EXPECT_EQ(JudgeKey(picture, {4, "abc", false}).holds, std::nullopt) << "cut";
  EXPECT_EQ(JudgeKey(Picture("no", ""), {3, "abc", true}).holds, std::nullopt);
}

TEST(Assumptions, SizesAgree) {
  DcfObj picture{};
  picture.value5 = 1000;
  EXPECT_EQ(JudgeValue5(picture, 1000).holds, true);
  EXPECT_EQ(JudgeValue5(picture, 1001).seen, "1000 for a file of 1001 bytes");
  EXPECT_EQ(JudgeListedSize(5, Set(5, 5)).holds, true);
  EXPECT_EQ(JudgeListedSize(6, Set(5, 5)).holds, false);
  EXPECT_EQ(JudgeListedSize(std::nullopt, Set(5, 5)).holds, std::nullopt);
}

TEST(Assumptions, AFileHasAtMostOneSurplusByte) {
  EXPECT_EQ(JudgeSurplus(Set(5, 5)).holds, true);
  EXPECT_EQ(JudgeSurplus(Set(5, 6)).holds, true);
  EXPECT_EQ(JudgeSurplus(Set(5, 7)).holds, false);
  EXPECT_EQ(JudgeSurplus(Set(5, 4)).holds, false);
  EXPECT_EQ(JudgeSurplus(Set(5, 7, false)).holds, false);
  EXPECT_EQ(JudgeSurplus(Set(5, 7, false)).seen, "5 bytes announced, 7 or more came");
  for (const std::size_t cut : {4U, 5U, 6U}) {
    EXPECT_EQ(JudgeSurplus(Set(5, cut, false)).holds, std::nullopt);
    EXPECT_EQ(JudgeSurplus(Set(5, cut, false)).seen, "the file is too large to be read whole");
  }
}

TEST(Assumptions, OffsetsCount) {
  EXPECT_EQ(JudgeOffsets(kelva::OffsetOrder::kAny).holds, true);
  EXPECT_EQ(JudgeOffsets(kelva::OffsetOrder::kForwardOnly).holds, false);
  EXPECT_EQ(JudgeOffsets(kelva::OffsetOrder::kUnknown).holds, std::nullopt);
}

}  // namespace
}  // namespace apps::survey
