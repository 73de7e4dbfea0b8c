#include "apps/commandline/Failure.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace apps {
namespace {

TEST(FailureTest, ASystemCallSaysWhatWasTriedAndWhy) {
  const Failure failure = SystemFailure("open X", ENOENT);
  EXPECT_STREQ(failure.what(), "Cannot open X: No such file or directory; check the name.");
  EXPECT_EQ(failure.Code(), ExitCode::kFailed);
  EXPECT_EQ(failure.SystemError(), ENOENT);
}

TEST(FailureTest, AFullDiskSaysWhatToDo) {
  EXPECT_STREQ(SystemFailure("write into X", ENOSPC).what(),
               "Cannot write into X: No space left on device; make room there and try again.");
}

}  // namespace
}  // namespace apps
