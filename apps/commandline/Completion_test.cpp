#include "apps/commandline/Completion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace apps {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Argument kPath[] = {{"PATH", "A path."}};
constexpr Argument kShell[] = {{"SHELL", "Which.", Argument::Count::kOne, Offer::kWords, "bash zsh"}};
constexpr Option kOptions[] = {{"zone", 'z', "ZONE", "It's [a] zone.", Offer::kWords, "utc local"},
                               {"force", 0, "", "Do it."}};
constexpr Verb kTable[] = {
    {"time", "The clock's time", {}, kOptions, "", "", {}, nullptr},
    {"wifi name", "Name", kPath, {}, "", "", {}, nullptr},
    {"wifi off", "Off", {}, {}, "", "", {}, nullptr},
    {"control", "Show", kPath, {}, "", "", {}, nullptr},
    {"control set", "Set", kPath, {}, "", "", {}, nullptr},
    {"completion", "Script", kShell, {}, "", "", {}, nullptr},
};
constexpr Option kCommon[] = {{"timeout", 0, "SECONDS", "End."}};
constexpr Program kProgram = {"kelva", "1", "", "", kTable, kCommon};

TEST(CompletionTest, ThereIsOneForEachShellAndNoOther) {
  EXPECT_TRUE(Completion(kProgram, "zsh").has_value());
  EXPECT_TRUE(Completion(kProgram, "fish").has_value());
  EXPECT_FALSE(Completion(kProgram, "cmd").has_value());
}

TEST(CompletionTest, NamesAreSplitIntoTheirWords) {
  EXPECT_THAT(FirstWords(kTable), ElementsAre("time", "wifi", "control", "completion"));
  EXPECT_THAT(SecondWords(kTable, "wifi"), ElementsAre("name", "off"));
  EXPECT_THAT(SecondWords(kTable, "time"), IsEmpty());
}

TEST(QuotedTest, OneShellWordWhateverIsInIt) {
  EXPECT_EQ(Quoted("it's $x"), "'it'\\''s $x'");
}

}  // namespace
}  // namespace apps
