#include "apps/tool/HandOver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace apps {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

// What runs when it is there is tested with the programs themselves.
TEST(HandOverTest, AProgramThatIsMissingIsNamed) {
  constexpr std::array<const char*, 3> kArguments{"list", "--virtual", "/run/bus"};
  Program tool;
  tool.name = "kelva";
  EXPECT_THAT(HandOver(tool, kArguments, -1), AllOf(HasSubstr("kelva-virtual: "), EndsWith("; install kelva again.")));
}

}  // namespace
}  // namespace apps
