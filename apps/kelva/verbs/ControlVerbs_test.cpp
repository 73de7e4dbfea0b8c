#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using ControlVerbsTest = VerbTest;

TEST_F(ControlVerbsTest, ControlsAreShownAndSettingOneSaysThatNoTextTravels) {
  EXPECT_NE(Run({"control"}).out.find("fifth   2.8\n"), std::string::npos);
  const Ran ran = Run({"control", "set", "3", "fast"});
  EXPECT_EQ(ran.code, ExitCode::kDone);
  EXPECT_NE(ran.err.find("carries no text"), std::string::npos);
  EXPECT_NE(Run({"control", "get"}).out.find("first   3\n"), std::string::npos);
  EXPECT_EQ(Run({"control", "set", "256", "x"}).code, ExitCode::kUsage);
}

}  // namespace
}  // namespace apps
