#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using ConsoleVerbTest = VerbTest;

TEST_F(ConsoleVerbTest, TheConsoleIsHandedOverOnce) {
  EXPECT_NE(Run({"console"}).out.find("started"), std::string::npos);
  EXPECT_EQ(Run({"console"}).out.find("started"), std::string::npos);
}

}  // namespace
}  // namespace apps
