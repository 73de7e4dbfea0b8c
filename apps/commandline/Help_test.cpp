#include "apps/commandline/Help.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace apps {
namespace {

using testing::HasSubstr;

constexpr Argument kArguments[] = {{"PATH", "A file.", Argument::Count::kOneOrMore}};
constexpr Option kOptions[] = {{"output", 'o', "FILE", "Where to."},
                               {"a-name-that-is-much-too-long", 0, "", "What it does."}};
constexpr Example kExamples[] = {{"PROGRAM get X", "Fetch X."}};
constexpr Option kCommon[] = {{"serial", 's', "SERIAL", "The camera."}};
constexpr Verb kGet = {"get", "Fetch files", kArguments, kOptions, "One.\n\nTwo.", "", kExamples, nullptr};
constexpr Program kTool = {"tool", "1", "What it does", "", std::span(&kGet, 1), kCommon};

TEST(HelpTest, TheUsageLineShowsWhatIsNeeded) {
  EXPECT_EQ(UsageLine(kTool, kGet), "tool get [OPTIONS] PATH...");
}

TEST(HelpTest, EverythingInTheTableIsShown) {
  const std::string help = HelpFor(kTool, kGet);
  EXPECT_THAT(help, HasSubstr("Fetch files.\n\nUsage: tool get [OPTIONS] PATH...\n\nOne.\n\nTwo.\n"));
  EXPECT_THAT(help, HasSubstr("\nArguments:\n  PATH                    A file.\n"));
  EXPECT_THAT(help, HasSubstr("\n  -o, --output FILE       Where to.\n"));
  EXPECT_THAT(help, HasSubstr("\n      --a-name-that-is-much-too-long\n                          What it does.\n"));
  EXPECT_THAT(help, HasSubstr("\n  -s, --serial SERIAL     The camera.\n"));
  EXPECT_THAT(help, HasSubstr("\nExamples:\n  tool get X\n      Fetch X.\n"));
}

TEST(HelpTest, TheOverviewListsAllVerbs) {
  EXPECT_THAT(Overview(kTool), HasSubstr("\n  get                 Fetch files\n"));
}

TEST(WrappedTest, LinesEndAtTheWidth) {
  EXPECT_EQ(Wrapped("aa bb cc", 2, 7), "  aa bb\n  cc\n");
  EXPECT_EQ(Wrapped("toolongforit b", 0, 5), "toolongforit\nb\n");
  EXPECT_EQ(Wrapped("a\nb\n\nc", 1, 10), " a b\n\n c\n");
}

}  // namespace
}  // namespace apps
