#include "apps/decoder/Jpeg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/decoder/testing/TinyJpeg.h"

namespace apps {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

// A row of squares, 8 pixels each.
std::string Row(int squares) {
  return TinyJpeg::File(squares, std::vector<int>(static_cast<std::size_t>(squares), 90));
}

int GreyAt(const Pixels& image, int x, int y) {
  return image.rgb[image.At(x, y)];
}

TEST(JpegTest, SquaresAreDrawnWhereTheyAre) {
  const Decoded decoded = DecodeJpeg(TinyJpeg::File(2, {10, 60, 200, 250}), 16);
  EXPECT_EQ(decoded.image.width, 16);
  EXPECT_EQ(decoded.image.height, 16);
  EXPECT_EQ(decoded.complaint, "");
  EXPECT_EQ(GreyAt(decoded.image, 0, 0), 10);
  EXPECT_EQ(GreyAt(decoded.image, 15, 0), 60);
  EXPECT_EQ(GreyAt(decoded.image, 0, 15), 200);
  EXPECT_EQ(GreyAt(decoded.image, 15, 15), 250);
}

TEST(JpegTest, TheSmallestScaleThatHasEnoughPixelsIsTaken) {
  EXPECT_EQ(DecodeJpeg(Row(10), 10).image.width, 10);
  EXPECT_EQ(DecodeJpeg(Row(10), 11).image.width, 20);
  EXPECT_EQ(DecodeJpeg(Row(10), 61).image.width, 70);
  EXPECT_EQ(DecodeJpeg(Row(10), 80).image.width, 80);
  EXPECT_EQ(DecodeJpeg(Row(10), 81).image.width, 80);
}

TEST(JpegTest, AnEighthShowsOnePixelOfEachSquare) {
  const Pixels image = DecodeJpeg(TinyJpeg::File(2, {10, 60, 200, 250}), 2).image;
  EXPECT_EQ(image.rgb, (std::vector<std::uint8_t>{10, 10, 10, 60, 60, 60, 200, 200, 200, 250, 250, 250}));
}

TEST(JpegTest, WhatIsCutOffIsDrawnAsFarAsItGoes) {
  const std::string whole = TinyJpeg::File(2, {10, 60, 200, 250});
  const Decoded decoded = DecodeJpeg(whole.substr(0, whole.size() - 5), 16);
  EXPECT_NE(decoded.complaint, "");
  EXPECT_EQ(GreyAt(decoded.image, 0, 0), 10);
}

TEST(JpegTest, OtherBytesAreNoPicture) {
  for (const std::string bytes : {"", "x", "GIF89a", "\xFF\xD8", "\xFF\xD8\xFF\xD9"}) {
    EXPECT_THROW(DecodeJpeg(bytes, 100), NoPicture) << bytes;
  }
}

TEST(JpegTest, AFileThatClaimsTooMuchIsNotDrawn) {
  std::string huge = Row(1);
  const std::size_t frame = huge.find("\xFF\xC0");
  huge.replace(frame + 5, 4, "\xFF\x00\xFF\x00", 4);
  EXPECT_THROW(DecodeJpeg(huge, 100), NoPicture);
}

TEST(JpegTest, AProgressiveFileMayClaimLess) {
  std::string large = Row(1);
  const std::size_t frame = large.find("\xFF\xC0");
  large.replace(frame + 5, 4, "\x20\x00\x20\x00", 4);  // 8192 by 8192
  EXPECT_NE(DecodeJpeg(large, 100).complaint, "") << "a whole picture of grey, cut off after one square";
  large[frame + 1] = '\xC2';
  EXPECT_THAT([&] { DecodeJpeg(large, 100); }, ThrowsMessage<NoPicture>(HasSubstr("claims 8192 by 8192 pixels")));
}

TEST(JpegTest, EveryDamagedByteIsAPictureOrNone) {
  const std::string whole = TinyJpeg::File(3, {10, 60, 200, 250, 90, 0});
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const char byte : {'\x00', '\x7F', '\xFF'}) {
      std::string damaged = whole;
      damaged[at] = byte;
      try {
        const Decoded decoded = DecodeJpeg(damaged, 24);
        EXPECT_EQ(decoded.image.rgb.size(),
                  static_cast<std::size_t>(decoded.image.width) * static_cast<std::size_t>(decoded.image.height) * 3);
      } catch (const NoPicture& reason) {
        EXPECT_STRNE(reason.what(), "");
      }
    }
  }
}

TEST(JpegTest, WhatIsEncodedCanBeDrawn) {
  const Pixels image{2, 1, {200, 200, 200, 200, 200, 200}};
  const std::string file = EncodeJpeg(image);
  EXPECT_EQ(file.substr(0, 3), "\xFF\xD8\xFF");
  const Decoded decoded = DecodeJpeg(file, 2);
  EXPECT_EQ(decoded.image.width, 2);
  EXPECT_NEAR(GreyAt(decoded.image, 1, 0), 200, 2);
}

}  // namespace
}  // namespace apps
