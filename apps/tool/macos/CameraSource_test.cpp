#include "apps/tool/CameraSource.h"

#include <gtest/gtest.h>

#include "apps/commandline/Failure.h"

namespace apps {
namespace {

TEST(MacCameraSourceTest, TheFrameworksAreTheSourceAndABusIsRefused) {
  EXPECT_NO_THROW(ChooseCameraSource(std::nullopt, {}));
  EXPECT_THROW(ChooseCameraSource("/run/bus", {}), Failure);
}

TEST(MacCameraSourceTest, ProgramsStandInLineForEachCamera) {
  const auto one = LineOf(std::nullopt, "K1");
  const auto other = LineOf(std::nullopt, "K2");
  ASSERT_TRUE(one && other);
  EXPECT_EQ(one->path, other->path);
  EXPECT_NE(one->camera, other->camera);
}

TEST(MacCameraSourceTest, NobodyHoldsACameraThatIsNotThere) {
  EXPECT_EQ(HoldersInWords(std::nullopt, "K1"), "");
}

}  // namespace
}  // namespace apps
