// What only Linux has to keep a secret out of a dump.

#include "apps/kelva/verbs/Secret.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <cstdlib>

#include "apps/commandline/Output.h"
#include "apps/kelva/verbs/testing/Input.h"

namespace apps {
namespace {

TEST(SecretOnLinuxTest, TheProcessThatHoldsItCannotBeDumped) {
  const auto read = [] {
    const Input input("open sesame\n");
    const Stop stop;
    ReadSecret("? ", stop);
    std::_Exit(::prctl(PR_GET_DUMPABLE));
  };
  EXPECT_EXIT(read(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace apps
