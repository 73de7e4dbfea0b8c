#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using DoctorVerbTest = VerbTest;

TEST_F(DoctorVerbTest, OnAVirtualBusItLooksAtTheCameras) {
  const Ran ran = Run({"doctor", "--virtual", "x"});
  EXPECT_EQ(ran.code, ExitCode::kDone) << ran.err;
  EXPECT_EQ(ran.out, "The virtual camera K1 is ready to be used.\n");
  Run({"reboot"});
  const Ran restarting = Run({"doctor", "--virtual", "x", "--json"});
  EXPECT_EQ(restarting.code, ExitCode::kFailed);
  EXPECT_NE(restarting.out.find("\"condition\":\"not-answering\""), std::string::npos) << restarting.out;
}

}  // namespace
}  // namespace apps
