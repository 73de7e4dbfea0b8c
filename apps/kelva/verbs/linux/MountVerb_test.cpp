#include <gtest/gtest.h>

#include "apps/commandline/Parse.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

TEST(MountVerbTest, AnotherProgramDoesIt) {
  const Verb* verb = FindVerb(Kelva().verbs, "mount");
  ASSERT_NE(verb, nullptr);
  EXPECT_EQ(verb->doneBy, "kelva-mount");
  EXPECT_EQ(verb->run, nullptr);
}

}  // namespace
}  // namespace apps
