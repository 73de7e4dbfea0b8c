#include "apps/commandline/Completion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace apps {
namespace {

using testing::HasSubstr;

constexpr Option kOptions[] = {{"zone", 'z', "ZONE", "It's [a] zone.", Offer::kWords, "utc local"}};
constexpr Verb kTable[] = {{"time", "The clock's time", {}, kOptions, "", "", {}, nullptr}};
constexpr Option kCommon[] = {{"timeout", 0, "SECONDS", "End."}};
constexpr Program kProgram = {"kelva", "1", "", "", kTable, kCommon};

constexpr Verb kLonger[] = {
    {"time", "The clock's time", {}, kOptions, "", "", {}, nullptr},
    {"time set", "Set it", {}, {}, "", "", {}, nullptr},
};
constexpr Program kProgramLonger = {"kelva", "1", "", "", kLonger, kCommon};

TEST(CompletionTest, FishKeepsTheOptionsOfACommandFromItsLongerNames) {
  EXPECT_THAT(FishCompletion(kProgramLonger), HasSubstr("-n '__fish_seen_subcommand_from time; and not "
                                                        "__fish_seen_subcommand_from set' -s z -l zone"));
}

TEST(CompletionTest, FishAsksForTheCommandBeforeItsOptions) {
  EXPECT_THAT(FishCompletion(kProgram),
              HasSubstr("complete -c kelva -n '__fish_seen_subcommand_from time' -s z -l zone -x -a 'utc local' -d "
                        "'It\\'s [a] zone.'\n"));
}

}  // namespace
}  // namespace apps
