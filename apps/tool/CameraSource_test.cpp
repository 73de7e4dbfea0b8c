#include "apps/tool/CameraSource.h"

#include <gtest/gtest.h>

#include "apps/commandline/Failure.h"

namespace apps {
namespace {

TEST(CameraSourceTest, ABusThatNobodyServesIsAFailure) {
  EXPECT_THROW(ChooseCameraSource("/nowhere/bus", {}), Failure);
}

TEST(CameraSourceTest, AnEmptyPathIsWrongUse) {
  try {
    ChooseCameraSource("", {});
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Code(), ExitCode::kUsage);
    EXPECT_STREQ(failure.what(), "--virtual needs the path of a virtual bus's socket.");
  }
}

}  // namespace
}  // namespace apps
