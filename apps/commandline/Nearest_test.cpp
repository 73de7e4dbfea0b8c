#include "apps/commandline/Nearest.h"

#include <gtest/gtest.h>

#include <string>

namespace apps {
namespace {

constexpr Verb kTable[] = {
    {"battery", "", {}, {}, "", "", {}, nullptr},
    {"reboot", "", {}, {}, "", "", {}, nullptr},
    {"rm", "", {}, {}, "", "", {}, nullptr},
};

TEST(EditDistanceTest, CountsInsertionsDeletionsAndReplacements) {
  EXPECT_EQ(EditDistance("", ""), 0U);
  EXPECT_EQ(EditDistance("", "abc"), 3U);
  EXPECT_EQ(EditDistance("battery", "batery"), 1U);
  EXPECT_EQ(EditDistance("kitten", "sitting"), 3U);
}

TEST(NearestVerbTest, FindsAWordWithUpToTwoSlips) {
  EXPECT_EQ(NearestVerb(kTable, "batery"), "battery");
  EXPECT_EQ(NearestVerb(kTable, "rebot"), "reboot");
}

TEST(NearestVerbTest, DoesNotGuessFromTooLittle) {
  EXPECT_EQ(NearestVerb(kTable, "xx"), "");
  EXPECT_EQ(NearestVerb(kTable, "r"), "");
  EXPECT_EQ(NearestVerb(kTable, ""), "");
  EXPECT_EQ(NearestVerb(kTable, std::string(1'000'000, 'a')), "");
}

}  // namespace
}  // namespace apps
