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

TEST_F(WaitVerbTest, TheWordForTheCameraWithoutASerialNumberIsNoSerialNumber) {
  EXPECT_NE(Run({"wait", "--gone", "-s", "-", "--json"}).out.find(R"("serial":"","attached":false)"),
            std::string::npos);
}

}  // namespace
}  // namespace apps
