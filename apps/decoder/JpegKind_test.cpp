#include "apps/decoder/JpegKind.h"

#include <gtest/gtest.h>

#include "apps/decoder/testing/TinyJpeg.h"

namespace apps {
namespace {

TEST(JpegKindTest, ABaselineFileComesRowByRow) {
  EXPECT_TRUE(ComesRowByRow(TinyJpeg::File(1, {90})));
  EXPECT_TRUE(ComesRowByRow(TinyJpeg::File(1, {90}, TinyJpeg::ExifPart(6))));
}

TEST(JpegKindTest, AProgressiveFileDoesNot) {
  std::string file = TinyJpeg::File(1, {90});
  file[file.find("\xFF\xC0") + 1] = '\xC2';
  EXPECT_FALSE(ComesRowByRow(file));
}

TEST(JpegKindTest, AFileWithAScanForEachComponentDoesNot) {
  std::string file = TinyJpeg::File(1, {90});
  const std::size_t frame = file.find("\xFF\xC0");
  const std::size_t scan = file.find("\xFF\xDA");
  ASSERT_EQ(file[frame + 9], file[scan + 4]);
  file[frame + 9] = 3;
  file[scan + 4] = 1;
  EXPECT_FALSE(ComesRowByRow(file));
}

TEST(JpegKindTest, WhatIsInsideAnotherPartIsNoFrame) {
  const std::string decoy = TinyJpeg::Segment('\xE1', std::string("\xFF\xC0\0\x08", 4));
  std::string file = TinyJpeg::File(1, {90}, decoy);
  file[file.rfind("\xFF\xC0") + 1] = '\xC2';
  EXPECT_FALSE(ComesRowByRow(file));
}

// Such a marker would make the look jump to a place that the sender chooses.
TEST(JpegKindTest, AMarkerWithoutALengthIsInDoubt) {
  const std::string file = TinyJpeg::File(1, {90});
  for (const char* marker : {"\xFF", "\xFF\x01", "\xFF\xD0", "\xFF\xD7", "\xFF\xD8", "\xFF\xBF"}) {
    EXPECT_FALSE(ComesRowByRow(file.substr(0, 2) + marker + file.substr(2)));
  }
}

TEST(JpegKindTest, EveryCutAndEveryOtherFileIsInDoubt) {
  const std::string file = TinyJpeg::File(1, {90});
  const std::size_t scan = file.find("\xFF\xDA");
  for (std::size_t size = 0; size < scan + 5; ++size) {
    EXPECT_FALSE(ComesRowByRow(file.substr(0, size))) << size;
  }
  EXPECT_FALSE(ComesRowByRow(std::string("no picture at all")));
  EXPECT_FALSE(ComesRowByRow(std::string("\xFF\xD8\xFF\xE0\xFF\xFF", 6)));
}

}  // namespace
}  // namespace apps
