#include "apps/commandline/Completion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace apps {
namespace {

using testing::HasSubstr;

constexpr Option kOptions[] = {{"zone", 'z', "ZONE", "It's [a] zone.", Offer::kWords, "utc local"}};
constexpr Verb kTable[] = {{"time", "The clock's time", {}, kOptions, "", "", {}, nullptr}};

constexpr Verb kLonger[] = {
    {"time", "The clock's time", {}, kOptions, "", "", {}, nullptr},
    {"time set", "Set it", {}, {}, "", "", {}, nullptr},
};

TEST(CompletionTest, FishKeepsTheOptionsOfACommandFromItsLongerNames) {
  EXPECT_THAT(FishCompletion(kLonger), HasSubstr("-n '__fish_seen_subcommand_from time; and not "
                                                 "__fish_seen_subcommand_from set' -s z -l zone"));
}

TEST(CompletionTest, FishAsksForTheCommandBeforeItsOptions) {
  EXPECT_THAT(FishCompletion(kTable),
              HasSubstr("complete -c kelva -n '__fish_seen_subcommand_from time' -s z -l zone -x -a 'utc local' -d "
                        "'It\\'s [a] zone.'\n"));
}

}  // namespace
}  // namespace apps
