#include "tools/draw-pictures/Scene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>

namespace {

TEST(Scene, HasThreeBytesForEveryPixel) {
  EXPECT_EQ(DrawScene(40, 30, 0).rgb.size(), std::size_t{40 * 30 * 3});
}

TEST(Scene, StartsWithTheZenithOfItsHour) {
  const Image image = DrawScene(40, 30, 0);
  EXPECT_THAT((std::vector<int>{image.rgb[0], image.rgb[1], image.rgb[2]}), testing::ElementsAre(28, 60, 140));
}

TEST(Scene, EndsWithTheNearestRidge) {
  const Image image = DrawScene(40, 30, 0);
  const std::size_t last = image.rgb.size() - 3;
  EXPECT_THAT((std::vector<int>{image.rgb[last], image.rgb[last + 1], image.rgb[last + 2]}),
              testing::ElementsAre(30, 55, 35));
}

TEST(Scene, DiffersFromPictureToPicture) {
  EXPECT_NE(DrawScene(40, 30, 1).rgb, DrawScene(40, 30, 2).rgb);
}

TEST(Scene, IsTheSameEveryTime) {
  EXPECT_EQ(DrawScene(40, 30, 3).rgb, DrawScene(40, 30, 3).rgb);
}

}  // namespace
