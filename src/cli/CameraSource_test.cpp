#include "CameraSource.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "frame/Failure.h"

namespace kelva {
namespace {

TEST(CameraSourceTest, ABusThatNobodyServesIsAFailure) {
  EXPECT_THROW(ChooseCameraSource("/nowhere/bus"), Failure);
}

TEST(CameraSourceTest, TheVariableNamesABusToo) {
  ::setenv("KELVA_VIRTUAL", "/nowhere/bus", 1);
  EXPECT_THROW(ChooseCameraSource(std::nullopt), Failure);
  ::unsetenv("KELVA_VIRTUAL");
}

}  // namespace
}  // namespace kelva
