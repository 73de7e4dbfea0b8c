#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using WaitVerbTest = VerbTest;

TEST_F(WaitVerbTest, WaitingForACameraThatIsThereReturnsAtOnce) {
  EXPECT_EQ(Run({"wait", "-s", "K1"}).out, "K1\n");
}

TEST_F(WaitVerbTest, WaitingForTheEndOfOneThatIsNotThereReturnsAtOnce) {
  EXPECT_EQ(Run({"wait", "--gone", "-s", "K9"}).code, ExitCode::kDone);
}

}  // namespace
}  // namespace apps
