#include "apps/kelva/CameraSource.h"

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

TEST(CameraSourceTest, ProgramsOfABusStandInLineAtItsFolder) {
  const auto one = LineOf("/run/bus", "K1");
  const auto other = LineOf("/run/bus", "K2");
  ASSERT_TRUE(one && other);
  EXPECT_EQ(one->path, "/run");
  EXPECT_NE(one->camera, other->camera);
  EXPECT_NE(LineOf("/run/bus2", "K1")->camera, one->camera);
  EXPECT_EQ(LineOf("bus", "K1")->path, ".");
}

}  // namespace
}  // namespace apps
