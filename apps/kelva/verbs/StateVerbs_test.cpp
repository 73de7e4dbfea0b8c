#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using StateVerbsTest = VerbTest;

TEST_F(StateVerbsTest, StateIsShownAndCounted) {
  EXPECT_EQ(Run({"ready"}).out, "ready\n");
  EXPECT_EQ(Run({"battery"}).out, "100\n");
  EXPECT_EQ(Run({"ready", "--json"}).out,
            "{\"schema\":1,\"command\":\"ready\",\"exit\":0,\"ok\":true,\"serial\":\"K1\",\"ready\":true}\n");
  EXPECT_EQ(Run({"done-count"}).code, ExitCode::kDone);
}

TEST_F(StateVerbsTest, ARestartedCameraIsNotReadyAtOnce) {
  EXPECT_EQ(Run({"reboot"}).code, ExitCode::kDone);
  EXPECT_NE(Run({"ready"}).code, ExitCode::kDone);
}

}  // namespace
}  // namespace apps
