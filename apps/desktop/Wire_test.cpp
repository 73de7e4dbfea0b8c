#include "apps/desktop/Wire.h"

#include <gtest/gtest.h>

namespace desktop {
namespace {

TEST(WireTest, WordsAreEncodedWithTabsBetween) {
  EXPECT_EQ(CommandLine({"import", "new"}), "import\tnew\n");
}

TEST(WireTest, ATabALineFeedOrALetterBeyondAsciiCannotEndAWord) {
  EXPECT_EQ(CommandLine({"target", QStringLiteral("/a\tb\n%\u00e9"), ""}), "target\t%2Fa%09b%0A%25%C3%A9\t\n");
}

}  // namespace
}  // namespace desktop
