#include "verbs/VerbTest.h"

namespace kelva {
namespace {

using DoctorVerbTest = VerbTest;

TEST_F(DoctorVerbTest, DoctorLooksAtTheMachineAndNotAtAVirtualBus) {
  EXPECT_EQ(Run({"doctor", "--virtual", "x"}).code, ExitCode::kUsage);
}

}  // namespace
}  // namespace kelva
