#include "apps/commandline/Context.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

TEST(ContextTest, AResultNamesItsCommandAndHowItEnded) {
  EXPECT_EQ(ResultLine("get", ExitCode::kPartial, Json::Object().Set("size", 3)),
            "{\"schema\":1,\"command\":\"get\",\"exit\":6,\"ok\":false,\"size\":3}\n");
}

}  // namespace
}  // namespace apps
