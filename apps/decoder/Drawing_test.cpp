#include "apps/decoder/Drawing.h"

#include <gtest/gtest.h>

#include "apps/decoder/testing/TinyJpeg.h"

namespace apps {
namespace {

TEST(DrawingTest, APictureIsDrawnSmallAndUpright) {
  const Drawing drawing = std::get<Drawing>(Draw(TinyJpeg::File(2, {10, 250}, TinyJpeg::ExifPart(6))));
  EXPECT_EQ(drawing.image.width, 8);
  EXPECT_EQ(drawing.image.height, 16);
  EXPECT_EQ(drawing.time, "2026-03-14 15:09:26");
  EXPECT_NE(std::get<std::string>(Draw(std::string("no picture"))), "");
}

}  // namespace
}  // namespace apps
