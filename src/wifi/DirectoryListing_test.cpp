#include "DirectoryListing.h"

#include <gtest/gtest.h>

#include <string>

#include "testing/Bytes.h"

namespace {

using namespace wifi_testing;

TEST(DirectoryListing, IsAHeaderATableAndNamesAtOffsetsOfTheAnswer) {
  const auto entries =
      kelva::DecodeListing(Bytes({9,    9, 9, 9, 1, 0, 0, 0,               // what stands before the count means nothing
                                  0x21, 0, 0, 0, 5, 0, 0, 0, 20, 0, 0, 0,  //
                                  'A',  0}));
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].name, "A");
  EXPECT_EQ(entries[0].size, 5);
  EXPECT_EQ(entries[0].attributes, 0x21);
}

TEST(DirectoryListing, EndsWithItsCountAlthoughTheTableGoesOn) {
  const auto entries = kelva::DecodeListing(Bytes({0,    0, 0, 0, 1, 0, 0, 0,               //
                                                   0x20, 0, 0, 0, 5, 0, 0, 0, 32, 0, 0, 0,  //
                                                   0x20, 0, 0, 0, 6, 0, 0, 0, 32, 0, 0, 0,  //
                                                   'A',  0}));
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].size, 5);
}

TEST(DirectoryListing, MayEndWithItsTable) {
  const auto entries = kelva::DecodeListing(Bytes({'A',  0, 0, 0, 1, 0, 0, 0,  //
                                                   0x20, 0, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0}));
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].name, "A");
}

TEST(DirectoryListing, WithoutAWholeHeaderIsEmpty) {
  EXPECT_TRUE(kelva::DecodeListing({}).empty());
  EXPECT_TRUE(kelva::DecodeListing(Bytes({0, 0, 0, 0, 1, 0, 0})).empty());
}

TEST(DirectoryListing, KeepsAnUnterminatedNameUpToTheEnd) {
  const auto entries = kelva::DecodeListing(Bytes({0,    0,   0,   0,  1, 0, 0, 0,               //
                                                   0x20, 0,   0,   0,  5, 0, 0, 0, 20, 0, 0, 0,  //
                                                   'L',  'A', 'S', 'T'}));
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].name, "LAST");
  EXPECT_EQ(entries[0].size, 5);
}

// A listing of `bad` entries whose names have no NUL, and after them one named "A".
std::string ListingOfEndlessNames(int bad) {
  const char count = static_cast<char>(bad + 1);
  const auto names = static_cast<char>(8 + 12 * (bad + 1) - 256);  // where "A" stands: beyond 256, below 512
  std::string answer = Bytes({0, 0, 0, 0}) + count + Bytes({0, 0, 0});
  for (int i = 0; i < bad; ++i) {
    answer += Bytes({0x20, 0, 0, 0, 1, 0, 0, 0}) + static_cast<char>(names + 2) + Bytes({1, 0, 0});
  }
  answer += Bytes({0x20, 0, 0, 0, 1, 0, 0, 0}) + names + Bytes({1, 0, 0});
  return answer + Bytes({'A', 0}) + std::string(600, 'x');
}

TEST(DirectoryListing, ReadsNamesFromSixteenTimesTheAnswerAndNoMore) {
  EXPECT_EQ(kelva::DecodeListing(ListingOfEndlessNames(20)).size(), 21u);  // 20 x 600 + 2 bytes of 16 x 862
  EXPECT_EQ(kelva::DecodeListing(ListingOfEndlessNames(38)).size(), 28u);  // 28 x 600 bytes of 16 x 1,078
}

}  // namespace
