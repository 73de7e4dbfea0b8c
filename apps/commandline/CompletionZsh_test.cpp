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

TEST(CompletionTest, ZshDescribesOptionsAndEscapesWhatItsSpecificationsUse) {
  EXPECT_THAT(ZshCompletion(kProgram), HasSubstr(R"('*--zone[It'\''s \[a\] zone.]:ZONE:(utc local)')"));
}

}  // namespace
}  // namespace apps
