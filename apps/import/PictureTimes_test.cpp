#include "apps/import/PictureTimes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "apps/decoder/testing/TinyJpeg.h"

namespace apps {
namespace {

std::vector<char> Start(const std::string& time) {
  const std::string bytes = "\xFF\xD8" + TinyJpeg::ExifPart(1, time);
  return {bytes.begin(), bytes.end()};
}

DcfObj Dated(const std::string& time) {
  DcfObj picture{};
  picture.hasJpg = 1;
  std::memcpy(picture.block8, time.data(), time.size());
  return picture;
}

std::string Text(const std::optional<TakenTime>& time) {
  return time ? TakenText(*time) : "none";
}

TEST(PictureTimesTest, ExifSaysMoreThanTheCatalogue) {
  PictureTimes times;
  const DcfObj picture = Dated("2020-01-01 00:00:00");
  EXPECT_FALSE(times.WasAsked(picture));
  times.Ask(picture, Start("2026:03:14 15:09:26"));
  EXPECT_TRUE(times.WasAsked(picture));
  EXPECT_EQ(Text(times.Of(picture)), "2026-03-14 15:09:26");
}

TEST(PictureTimesTest, TheCatalogueIsAskedWhereExifHasNoTime) {
  PictureTimes times;
  const DcfObj unknown = Dated("");
  EXPECT_EQ(Text(times.Of(unknown)), "none") << "nobody asked";
  const DcfObj plain = Dated("2020-01-01 00:00:00");
  EXPECT_EQ(Text(times.Of(plain)), "2020-01-01 00:00:00");
  for (const char* exif : {"0000:00:00 00:00:00", "2026:02:30 00:00:00", "    :  :     :  :  "}) {
    const DcfObj picture = Dated("2020-01-02 00:00:00");
    times.Ask(picture, Start(exif));
    EXPECT_EQ(Text(times.Of(picture)), "2020-01-02 00:00:00") << exif;
    const DcfObj neither = Dated("0000-00-00 00:00:00");
    times.Ask(neither, Start(exif));
    EXPECT_EQ(Text(times.Of(neither)), "none") << exif;
  }
  EXPECT_EQ(times.Trouble(), "");
}

TEST(PictureTimesTest, NoBytesAreNoQuestion) {
  PictureTimes times("/nonexistent/kelva-thumbnail");
  const DcfObj picture = Dated("2020-01-01 00:00:00");
  times.Ask(picture, {});
  EXPECT_TRUE(times.WasAsked(picture));
  EXPECT_EQ(Text(times.Of(picture)), "2020-01-01 00:00:00");
  EXPECT_EQ(times.Trouble(), "");
}

TEST(PictureTimesTest, TheFirstQuestionAboutAPictureCounts) {
  PictureTimes times;
  const DcfObj picture = Dated("");
  times.Ask(picture, Start("2026:03:14 15:09:26"));
  times.Ask(picture, Start("2027:03:14 15:09:26"));
  EXPECT_EQ(Text(times.Of(picture)), "2026-03-14 15:09:26");
}

TEST(PictureTimesTest, OnlyTheStartOfAFileIsLookedAt) {
  PictureTimes times;
  std::vector<char> late(65'536);
  const std::vector<char> start = Start("2026:03:14 15:09:26");
  late.insert(late.end(), start.begin(), start.end());
  const DcfObj picture = Dated("");
  times.Ask(picture, late);
  EXPECT_EQ(Text(times.Of(picture)), "none");
}

TEST(PictureTimesTest, WithoutTheProgramTheCatalogueDecidesAndTheTroubleIsSaid) {
  PictureTimes times("/nonexistent/kelva-thumbnail");
  const DcfObj picture = Dated("2020-01-01 00:00:00");
  times.Ask(picture, Start("2026:03:14 15:09:26"));
  EXPECT_EQ(Text(times.Of(picture)), "2020-01-01 00:00:00");
  EXPECT_THAT(times.Trouble(),
              testing::StartsWith("Cannot run /nonexistent/kelva-thumbnail, which decodes the pictures"));
}

TEST(PictureTimesTest, ManyQuestionsAreAnsweredInTheirOrder) {
  PictureTimes times;
  std::vector<DcfObj> pictures(100, Dated(""));
  const auto time = [](std::size_t i) {
    return "2026:03:14 15:" + std::to_string(10 + i / 10) + ":1" + std::to_string(i % 10);
  };
  for (std::size_t i = 0; i < pictures.size(); ++i) times.Ask(pictures[i], Start(time(i)));
  for (std::size_t i = pictures.size(); i-- > 0;) EXPECT_EQ(Text(times.Of(pictures[i])).substr(11), time(i).substr(11));
}

}  // namespace
}  // namespace apps
