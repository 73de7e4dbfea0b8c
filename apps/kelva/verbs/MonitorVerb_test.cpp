#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using MonitorVerbTest = VerbTest;

TEST_F(MonitorVerbTest, ALineReachesTheMonitor) {
  EXPECT_EQ(Run({"monitor", "help"}).code, ExitCode::kDone);
  EXPECT_EQ(Run({"monitor", "--char", "x"}).code, ExitCode::kDone);
}

}  // namespace
}  // namespace apps
