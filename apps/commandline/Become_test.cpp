#include "apps/commandline/Become.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace apps {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::StartsWith;

// What runs when it is there is tested with the programs themselves.
TEST(BecomeTest, AProgramThatIsMissingIsNamed) {
  constexpr std::array<const char*, 2> kArguments{"mount", "x"};
  EXPECT_THAT(Become("kelva-missing", "kelva", kArguments, -1),
              AllOf(StartsWith("Cannot run /"), EndsWith("kelva-missing: No such file or directory")));
}

}  // namespace
}  // namespace apps
