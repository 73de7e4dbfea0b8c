#include "apps/tool/BusCameras.h"

#include <gtest/gtest.h>

#include "apps/commandline/Failure.h"

namespace apps {
namespace {

TEST(BusCamerasTest, ABusThatNobodyServesIsAFailureAndHasNoHolders) {
  EXPECT_THROW(UseBus("/nowhere/bus"), Failure);
  EXPECT_TRUE(HoldersOnBus("/nowhere/bus", "K1").empty());
  EXPECT_TRUE(ObstaclesOnBus("/nowhere/bus").empty());
}

TEST(BusCamerasTest, ProgramsOfABusStandInLineAtItsFolder) {
  const LinePlace one = LineOnBus("/run/bus", "K1");
  EXPECT_EQ(one.path, "/run");
  EXPECT_NE(one.camera, LineOnBus("/run/bus", "K2").camera);
  EXPECT_NE(one.camera, LineOnBus("/run/bus2", "K1").camera);
  EXPECT_EQ(LineOnBus("bus", "K1").path, ".");
}

}  // namespace
}  // namespace apps
