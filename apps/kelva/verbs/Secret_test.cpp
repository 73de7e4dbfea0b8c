#include "apps/kelva/verbs/Secret.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Output.h"
#include "apps/kelva/verbs/testing/Input.h"

namespace apps {
namespace {

TEST(SecretTest, TheFirstLineOfAPipeIsTheSecret) {
  const Input input("open sesame\r\nmore\n");
  const Stop stop;
  EXPECT_EQ(ReadSecret("? ", stop), "open sesame");
}

TEST(SecretTest, TheProcessThatHoldsItLeavesNoCoreDump) {
  // In a process of its own, because there is no way back.
  const auto read = [] {
    const Input input("open sesame\n");
    const Stop stop;
    ReadSecret("? ", stop);
    rlimit core{1, 1};
    ::getrlimit(RLIMIT_CORE, &core);
    std::_Exit(core.rlim_cur == 0 && core.rlim_max == 0 ? 0 : 1);
  };
  EXPECT_EXIT(read(), ::testing::ExitedWithCode(0), "");
}

TEST(SecretTest, NothingIsAnError) {
  const Input input("");
  const Stop stop;
  EXPECT_THROW(ReadSecret("? ", stop), Failure);
}

TEST(SecretTest, ARequestToStopEndsTheWait) {
  const Input input("x");
  Stop stop;
  stop.Request();
  EXPECT_THROW(ReadSecret("? ", stop), Stopped);
}

}  // namespace
}  // namespace apps
