#include "apps/desktop/Application.h"

#include <gtest/gtest.h>

namespace desktop {
namespace {

TEST(ApplicationTest, TakesAVirtualBus) {
  EXPECT_EQ(ParseArguments({"--virtual", "/tmp/bus"}).bus, "/tmp/bus");
  EXPECT_EQ(ParseArguments({"--virtual=/tmp/a=b"}).bus, "/tmp/a=b");
  EXPECT_EQ(ParseArguments({}).bus, "");
}

TEST(ApplicationTest, AnswersWithoutAScreen) {
  EXPECT_TRUE(ParseArguments({"--version"}).answer.startsWith("kelva-desktop "));
  EXPECT_TRUE(ParseArguments({"--help"}).answer.startsWith("Usage:"));
}

TEST(ApplicationTest, AWordThatItDoesNotKnowIsAMistake) {
  EXPECT_FALSE(ParseArguments({"--frobnicate"}).mistake.isEmpty());
  EXPECT_FALSE(ParseArguments({"--virtual"}).mistake.isEmpty());
}

TEST(ApplicationTest, LeavesItsOwnWordsToQt) {
  EXPECT_TRUE(ParseArguments({"-style", "fusion", "-platform", "offscreen"}).mistake.isEmpty());
}

}  // namespace
}  // namespace desktop
