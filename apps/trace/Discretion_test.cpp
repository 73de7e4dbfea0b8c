#include "apps/trace/Discretion.h"

#include <gtest/gtest.h>

#include <array>

namespace apps {
namespace {

Shown ShownOf(Discretion& discretion, const _VscCdb& block) {
  const Shown shown = discretion.Begin(block).shown;
  discretion.Done(block);
  return shown;
}

TEST(Discretion, ChunksOfAPictureAreSummed) {
  Discretion camera;
  EXPECT_EQ(ShownOf(camera, {{0xC2, 0, 1}}), Shown::kBytes);  // the path
  EXPECT_EQ(ShownOf(camera, {{0xC6, 0, 0}}), Shown::kBytes);  // the size
  EXPECT_EQ(ShownOf(camera, {{0xC4, 0, 1}}), Shown::kSum);
  EXPECT_EQ(ShownOf(camera, {{0xC4, 0, 1, 0, 0, 1}}), Shown::kSum);
}

TEST(Discretion, InformationCatalogueAndFoldersAreShown) {
  for (const unsigned char what : std::to_array<unsigned char>({0x00, 0x02, 0x03})) {
    Discretion camera;
    ShownOf(camera, {{0xC2, 0, what}});
    EXPECT_EQ(ShownOf(camera, {{0xC4, 0, 1}}), Shown::kBytes);
    ShownOf(camera, {{0xC2, 0, 1}});
    EXPECT_EQ(ShownOf(camera, {{0xC4, 0, 1}}), Shown::kSum);
  }
}

// The camera may have what was selected before, or what it was asked for.
TEST(Discretion, AfterASelectThatFailedChunksAreSummed) {
  Discretion camera;
  camera.Begin({{0xC2, 0, 2}});
  EXPECT_EQ(ShownOf(camera, {{0xC4, 0, 1}}), Shown::kSum);
  ShownOf(camera, {{0xC2, 0, 2}});
  EXPECT_EQ(ShownOf(camera, {{0xC4, 0, 1}}), Shown::kBytes);
  camera.Begin({{0xC2, 0, 1}});
  EXPECT_EQ(ShownOf(camera, {{0xC4, 0, 1}}), Shown::kSum);
}

TEST(Discretion, WhatNobodySelectedIsSummed) {
  Discretion camera;
  EXPECT_EQ(ShownOf(camera, {{0xC4, 0, 1}}), Shown::kSum);
  EXPECT_EQ(ShownOf(camera, {{0xC4, 0, 0}}), Shown::kSum);
  EXPECT_EQ(ShownOf(camera, {{0xC7, 0, 1}}), Shown::kSum);
  EXPECT_EQ(ShownOf(camera, {{0xC6, 0, 0x08}}), Shown::kSum);
  EXPECT_EQ(ShownOf(camera, {{0xC0, 0, 0x0E}}), Shown::kSum);
}

TEST(Discretion, BundlesAndWrittenBytesAreSummedWhateverIsSelected) {
  Discretion camera;
  ShownOf(camera, {{0xC2, 0, 0}});
  EXPECT_EQ(ShownOf(camera, {{0xC4, 0, 0}}), Shown::kSum);
  EXPECT_EQ(ShownOf(camera, {{0xC5, 0, 0}}), Shown::kSum);
  EXPECT_EQ(ShownOf(camera, {{0xC1, 0, 0}}), Shown::kSum);
}

TEST(Discretion, PassphrasesAndTypedLinesAreNotShownAtAll) {
  Discretion camera;
  for (const unsigned char secret : std::to_array<unsigned char>({0x09, 0x0A, 0xFE, 0xFF})) {
    EXPECT_EQ(ShownOf(camera, {{0xC0, 0, secret}}), Shown::kNothing);
  }
}

TEST(Discretion, OfTheConsoleLogOnlyItsHeadIsShown) {
  Discretion camera;
  EXPECT_EQ(ShownOf(camera, {{0xC6, 0, 2}}), Shown::kHead);
}

TEST(Discretion, KnowsWhatNamesACameraOrItsOwner) {
  Discretion camera;
  EXPECT_EQ(camera.Begin({{0xC0, 0, 0x07}}).personal, Personal::kNetworkName);
  EXPECT_EQ(camera.Begin({{0xC0, 0, 0x08}}).personal, Personal::kNetworkName);
  ShownOf(camera, {{0xC2, 0, 0}});
  EXPECT_EQ(camera.Begin({{0xC4, 0, 1}}).personal, Personal::kInformation);
  ShownOf(camera, {{0xC2, 0, 2}});
  EXPECT_EQ(camera.Begin({{0xC4, 0, 1}}).personal, Personal::kNothing);
}

TEST(StandIns, KeepTheShapeOfTheInformationRecord) {
  const std::string record("K1-0042\0Kelva\0\x01\xFF v2.5b\0", 23);
  EXPECT_EQ(WithStandIns(record, Personal::kInformation, "K1-0042"),
            std::string("A0-0000\0Aaaaa\0\x01\x61 a0.0a\0", 23));
  EXPECT_EQ(WithStandIns("kelva.camera.Home7", Personal::kNetworkName, ""), "aaaaa.aaaaaa.Aaaa0");
}

TEST(StandIns, TakeThePlaceOfLettersOfEveryAlphabet) {
  // "Анна" and "家" in UTF-8.
  EXPECT_EQ(WithStandIns("\xD0\x90\xD0\xBD\xD0\xBD\xD0\xB0 7", Personal::kNetworkName, ""), "aaaaaaaa 0");
  EXPECT_EQ(WithStandIns("\xE5\xAE\xB6", Personal::kNetworkName, ""), "aaa");
}

TEST(StandIns, TakeThePlaceOfTheSerialNumberElsewhere) {
  EXPECT_EQ(WithStandIns("I:\\K1\\K1.JPG", Personal::kNothing, "K1"), "I:\\**\\**.JPG");
  EXPECT_EQ(WithStandIns("KKK", Personal::kNothing, "KK"), "**K");
  EXPECT_EQ(WithStandIns("I:\\DCIM", Personal::kNothing, ""), "I:\\DCIM");
}

}  // namespace
}  // namespace apps
