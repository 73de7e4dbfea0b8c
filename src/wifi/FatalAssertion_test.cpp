#include "FatalAssertion.h"

#include "testing/Switches.h"

namespace {

TEST(FatalAssertion, PrintsExpressionAndFunctionAndAborts) {
  EXPECT_EXIT(kelva::FailAssertion("a == b", "Compare"), testing::KilledBySignal(SIGABRT),
              testing::StrEq("Assertion failed: (a == b), function Compare.\n"));
}

}  // namespace
