#include "apps/thumbnails/Thumbnail.h"

#include <gtest/gtest.h>

#include "apps/decoder/Jpeg.h"
#include "apps/decoder/testing/TinyJpeg.h"

namespace apps {
namespace {

Thumbnail DrawThumbnail(std::span<const char> file) {
  static Thumbnailer thumbnailer;
  const Stop stop;
  return apps::DrawThumbnail(thumbnailer, file, stop);
}

TEST(ThumbnailTest, TheStartOfAFileIsEnoughForItsExifThumbnail) {
  Thumbnailer thumbnailer;
  const Stop stop;
  const std::string file =
      TinyJpeg::File(9, std::vector<int>(9, 90), TinyJpeg::ExifPartWith(TinyJpeg::File(2, {90, 90}), 6));
  const Thumbnail thumbnail = DrawThumbnailInStart(thumbnailer, std::span(file).first(500), stop);
  EXPECT_EQ(thumbnail.width, 8);
  EXPECT_EQ(thumbnail.height, 16) << "upright";
  EXPECT_EQ(thumbnail.time, "2026-03-14 15:09:26");
}

TEST(ThumbnailTest, AStartWithoutASoundThumbnailAsksForTheWholeFile) {
  Thumbnailer thumbnailer;
  const Stop stop;
  const std::string whole = TinyJpeg::File(1, {90});
  for (const std::string& thumbnail : {std::string("nonsense"), TinyJpeg::File(1, {90}).substr(0, whole.size() - 5)}) {
    const std::string file = TinyJpeg::File(1, {90}, TinyJpeg::ExifPartWith(thumbnail));
    EXPECT_THROW(DrawThumbnailInStart(thumbnailer, file, stop), NoThumbnail) << thumbnail.size();
  }
  EXPECT_THROW(DrawThumbnailInStart(thumbnailer, TinyJpeg::File(1, {90}, TinyJpeg::ExifPart(1)), stop), NoThumbnail);
  EXPECT_THROW(DrawThumbnailInStart(thumbnailer, {}, stop), NoThumbnail);
}

TEST(ThumbnailTest, ALargePictureBecomesSmall) {
  const Thumbnail thumbnail = DrawThumbnail(TinyJpeg::File(100, std::vector<int>(5000, 90)));
  EXPECT_EQ(thumbnail.width, 400);
  EXPECT_EQ(thumbnail.height, 200);
  EXPECT_EQ(thumbnail.complaint, "");
}

TEST(ThumbnailTest, ATurnedPictureIsUprightAndSaysNoMoreThatItIsTurned) {
  const Thumbnail thumbnail = DrawThumbnail(TinyJpeg::File(2, {10, 250}, TinyJpeg::ExifPart(6)));
  EXPECT_EQ(thumbnail.width, 8);
  EXPECT_EQ(thumbnail.height, 16);
  EXPECT_EQ(thumbnail.time, "2026-03-14 15:09:26");
  EXPECT_EQ(thumbnail.jpeg.find("Exif"), std::string::npos);
  const Pixels drawn = DecodeJpeg(thumbnail.jpeg, 16).image;
  EXPECT_LT(drawn.rgb[drawn.At(4, 1)], 40);
  EXPECT_GT(drawn.rgb[drawn.At(4, 14)], 215);
}

TEST(ThumbnailTest, ADamagedPictureSaysSo) {
  const std::string whole = TinyJpeg::File(2, {10, 60, 200, 250});
  EXPECT_NE(DrawThumbnail(whole.substr(0, whole.size() - 5)).complaint, "");
  EXPECT_THROW(DrawThumbnail(std::string("no picture")), NoPicture);
}

}  // namespace
}  // namespace apps
