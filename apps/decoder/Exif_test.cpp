#include "apps/decoder/Exif.h"

#include <gtest/gtest.h>

#include "apps/decoder/testing/TinyJpeg.h"

namespace apps {
namespace {

std::string With(const std::string& parts) {
  return TinyJpeg::File(1, {90}, parts);
}

TEST(ExifTest, AFileWithoutIsUprightAndUndated) {
  const ExifFacts facts = ReadExif(With(""));
  EXPECT_EQ(facts.orientation, 1);
  EXPECT_EQ(facts.time, std::nullopt);
}

TEST(ExifTest, AllEightOrientationsAreRead) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    EXPECT_EQ(ReadExif(With(TinyJpeg::ExifPart(orientation))).orientation, orientation);
  }
}

TEST(ExifTest, AnotherNumberIsUpright) {
  EXPECT_EQ(ReadExif(With(TinyJpeg::ExifPart(0))).orientation, 1);
  EXPECT_EQ(ReadExif(With(TinyJpeg::ExifPart(9))).orientation, 1);
}

TEST(ExifTest, TheTimeOfTakingIsReadInTheCataloguesForm) {
  EXPECT_EQ(ReadExif(With(TinyJpeg::ExifPart(1))).time, "2026-03-14 15:09:26");
}

TEST(ExifTest, ATimeOfAnotherFormIsNone) {
  EXPECT_EQ(ReadExif(With(TinyJpeg::ExifPart(1, "<b>6:03:14 15:09:26"))).time, std::nullopt);
  EXPECT_EQ(ReadExif(With(TinyJpeg::ExifPart(1, "    :  :     :  :  "))).time, std::nullopt);
}

TEST(ExifTest, OtherPartsBeforeItAreSkipped) {
  const std::string jfif = TinyJpeg::Segment('\xE0', std::string("JFIF\0\x01\x01\0\0\x01\0\x01\0\0", 14));
  EXPECT_EQ(ReadExif(With(jfif + TinyJpeg::ExifPart(6))).orientation, 6);
}

TEST(ExifTest, TheThumbnailIsTakenFromItsPart) {
  const std::string thumbnail = TinyJpeg::File(2, {90, 90});
  const std::string file = With(TinyJpeg::ExifPartWith(thumbnail, 6));
  const std::vector<char> found = ReadExifThumbnail(file);
  EXPECT_EQ(std::string(found.begin(), found.end()), thumbnail);
  EXPECT_EQ(ReadExif(file).orientation, 6);
  EXPECT_EQ(ReadExif(file).time, "2026-03-14 15:09:26");
  EXPECT_TRUE(ReadExifThumbnail(With(TinyJpeg::ExifPart(6))).empty());
  EXPECT_TRUE(ReadExifThumbnail(With("")).empty());
  EXPECT_TRUE(ReadExifThumbnail(file.substr(0, 150)).empty()) << "cut within the thumbnail";
}

TEST(ExifTest, APartThatIsCutSaysWhatCameOfIt) {
  // As a camera's that holds a thumbnail behind the time, here 60,000 bytes.
  const std::string small = TinyJpeg::ExifPart(6);
  const std::string part = TinyJpeg::Segment('\xE1', small.substr(4) + std::string(60'000, 'x'));
  const std::string jfif = TinyJpeg::Segment('\xE0', std::string("JFIF\0\x01\x01\0\0\x01\0\x01\0\0", 14));
  for (const std::string& file : {With(part), With(jfif + part)}) {
    const ExifFacts facts = ReadExif(file.substr(0, 4000));
    EXPECT_EQ(facts.orientation, 6);
    EXPECT_EQ(facts.time, "2026-03-14 15:09:26");
  }
}

TEST(ExifTest, EveryDamagedByteAndEveryCutIsSurvived) {
  const std::string whole = With(TinyJpeg::ExifPart(6));
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string damaged = whole;
    damaged[at] = '\xFF';
    for (const std::string& bytes : {damaged, whole.substr(0, at)}) {
      const int orientation = ReadExif(bytes).orientation;
      EXPECT_TRUE(orientation >= 1 && orientation <= 8);
    }
  }
}

}  // namespace
}  // namespace apps
