#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using DoctorVerbTest = VerbTest;

TEST_F(DoctorVerbTest, DoctorLooksAtTheMachineAndNotAtAVirtualBus) {
  EXPECT_EQ(Run({"doctor", "--virtual", "x"}).code, ExitCode::kUsage);
}

}  // namespace
}  // namespace apps
