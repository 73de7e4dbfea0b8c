#include "apps/decoder/Pixels.h"

#include <gtest/gtest.h>

#include <string>

namespace apps {
namespace {

// One letter a pixel: the letter three times over is its colour.
Pixels Draw(int width, const std::string& letters) {
  Pixels image{width, static_cast<int>(letters.size()) / width, {}};
  for (const char letter : letters) image.rgb.insert(image.rgb.end(), 3, static_cast<std::uint8_t>(letter));
  return image;
}

std::string Letters(const Pixels& image) {
  std::string text;
  for (int y = 0; y < image.height; ++y) {
    if (y > 0) text += '/';
    for (int x = 0; x < image.width; ++x) text += static_cast<char>(image.rgb[image.At(x, y)]);
  }
  return text;
}

struct Held {
  int orientation;
  int width;
  const char* stored;
};

class UprightTest : public testing::TestWithParam<Held> {};

// What is seen is "abc" over "def", however the camera was held.
TEST_P(UprightTest, EveryOrientationShowsTheSamePicture) {
  EXPECT_EQ(Letters(Upright(Draw(GetParam().width, GetParam().stored), GetParam().orientation)), "abc/def");
}

INSTANTIATE_TEST_SUITE_P(AllEight, UprightTest,
                         testing::Values(Held{1, 3, "abcdef"}, Held{2, 3, "cbafed"}, Held{3, 3, "fedcba"},
                                         Held{4, 3, "defabc"}, Held{5, 2, "adbecf"}, Held{6, 2, "cfbead"},
                                         Held{7, 2, "fcebda"}, Held{8, 2, "daebfc"}),
                         [](const auto& held) { return "Orientation" + std::to_string(held.param.orientation); });

TEST(PixelsTest, AnUnknownOrientationTurnsNothing) {
  for (const int orientation : {-1, 0, 9, 65535}) {
    EXPECT_EQ(Letters(Upright(Draw(3, "abcdef"), orientation)), "abc/def");
  }
}

TEST(PixelsTest, ShrinkingAveragesWhatEachPixelCovers) {
  const Pixels image{4, 2, {0,  0,  0, 40, 0,  0, 8, 8, 8, 8, 8, 8,  //
                            80, 40, 0, 40, 40, 0, 8, 8, 8, 8, 8, 10}};
  const Pixels small = Shrunk(image, 2);
  EXPECT_EQ(small.width, 2);
  EXPECT_EQ(small.height, 1);
  EXPECT_EQ(small.rgb, (std::vector<std::uint8_t>{40, 20, 0, 8, 8, 9}));
}

TEST(PixelsTest, ThePartsThatDoNotDivideEvenlyAreCoveredOnce) {
  const Pixels small = Shrunk(Draw(5, "aaaaa"), 3);
  EXPECT_EQ(Letters(small), "aaa");
}

TEST(PixelsTest, NothingIsEnlarged) {
  EXPECT_EQ(Letters(Shrunk(Draw(3, "abcdef"), 300)), "abc/def");
}

TEST(PixelsTest, AVeryLongPictureKeepsOnePixelOfItsShortSide) {
  const Pixels small = Shrunk(Draw(1000, std::string(1000, 'x')), 10);
  EXPECT_EQ(Letters(small), "xxxxxxxxxx");
}

}  // namespace
}  // namespace apps
