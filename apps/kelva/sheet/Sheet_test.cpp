#include "apps/kelva/sheet/Sheet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/testing/SilentContext.h"
#include "apps/decoder/testing/TinyJpeg.h"
#include "apps/kelva/sheet/testing/SheetTest.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

using testing::ElementsAre;

DcfObj Timed(int number, const char* time) {
  DcfObj picture = MadePicture(number);
  std::memcpy(picture.block8, time, std::strlen(time));
  return picture;
}

class SheetTest : public SheetFolderTest, protected SilentContext {
 protected:
  SheetTest() : SilentContext({.json = true}) {
    camera_.open = true;
    camera_.folder = "I:\\DCIM\\100ABCDE";
    camera_.files["IMG_0001.JPG"] = TinyJpeg::File(1, {90});
    camera_.files["IMG_0002.JPG"] = TinyJpeg::File(1, {90});
    camera_.files["IMG_0003.JPG"] = TinyJpeg::File(2, {90, 90});
  }

  SheetTotals Draw(FakeCamera& camera, const std::vector<DcfObj>& catalogue) {
    cards_.clear();
    Manifest nothing;
    Sheet sheet(context_, Shared(camera), Beside(folder_, nothing, "K1", catalogue));
    sheet.Draw(catalogue, ReadFileSizes(stop_, camera, catalogue),
               [this](const Card& card) { cards_.push_back(card); });
    list_ = sheet.TakeList().Text();
    return sheet.Totals();
  }

  FakeCamera camera_;
  std::vector<Card> cards_;
  std::string list_;
};

TEST_F(SheetTest, APictureIsReadOnceAndDrawn) {
  EXPECT_EQ(Draw(camera_, {MadePicture(1), MadePicture(3)}).drawn, 2U);
  EXPECT_EQ(camera_.reads, 2);
  EXPECT_EQ(cards_[0].name, "IMG_0001");
  EXPECT_EQ(cards_[0].files[0].size, camera_.files["IMG_0001.JPG"].size());
  EXPECT_EQ(cards_[1].thumbnail->width, 16);
}

// Larger than its start.
std::string Large(const std::string& parts) {
  return TinyJpeg::File(100, std::vector<int>(60'000, 90), parts) + std::string(70'000, 'x');
}

TEST_F(SheetTest, OfAPictureWithAnExifThumbnailOnlyTheStartIsRead) {
  camera_.files["IMG_0001.JPG"] = Large(TinyJpeg::ExifPartWith(TinyJpeg::File(2, {90, 90})));
  EXPECT_EQ(Draw(camera_, {MadePicture(1)}).drawn, 1U);
  EXPECT_EQ(camera_.reads, 1);
  EXPECT_EQ(cards_[0].thumbnail->width, 16);
  EXPECT_EQ(cards_[0].time, "2026-03-14 15:09:26");
  EXPECT_EQ(cards_[0].files[0].size, camera_.files["IMG_0001.JPG"].size());
}

TEST_F(SheetTest, APictureWithoutAnExifThumbnailIsReadWhole) {
  camera_.files["IMG_0001.JPG"] = Large(TinyJpeg::ExifPart(1));
  EXPECT_EQ(Draw(camera_, {MadePicture(1)}).drawn, 1U);
  EXPECT_EQ(camera_.reads, 2);
  EXPECT_EQ(cards_[0].thumbnail->height, 400);
}

TEST_F(SheetTest, WherePicturesHaveNoExifThumbnailTheirStartsAreNotReadBefore) {
  std::vector<DcfObj> catalogue;
  for (int number = 1; number <= 60; ++number) {
    catalogue.push_back(MadePicture(number));
    camera_.files["IMG_00" + std::to_string(100 + number).substr(1) + ".JPG"] = Large("");
  }
  EXPECT_EQ(Draw(camera_, catalogue).drawn, 60U);
  EXPECT_LT(camera_.reads, 60 + 20);
}

TEST_F(SheetTest, CardsKeepTheOrderOfTheCatalogueHoweverLongEachTakes) {
  std::vector<DcfObj> catalogue;
  std::vector<std::string> expected;
  for (int number = 10; number < 30; ++number) {
    const std::string name = "IMG_00" + std::to_string(number);
    const bool slow = number % 5 == 0;
    camera_.files[name + ".JPG"] = slow ? TinyJpeg::File(100, std::vector<int>(20000, 90)) : TinyJpeg::File(1, {90});
    catalogue.push_back(MadePicture(number));
    expected.push_back(name);
  }
  EXPECT_EQ(Draw(camera_, catalogue).drawn, 20U);
  std::vector<std::string> names;
  for (const Card& card : cards_) names.push_back(card.name);
  EXPECT_EQ(names, expected);
}

TEST_F(SheetTest, OfAPictureThatWasDrawnBeforeNothingIsReadUnlessItChanged) {
  const auto redraw = [&](const std::vector<DcfObj>& catalogue) {
    camera_.reads = 0;
    Manifest nothing;
    DrawnBefore drawn(path_ + "/cache", "K1");
    Sheet sheet(context_, Shared(camera_), Beside(folder_, nothing, "K1", catalogue), &drawn, "K1");
    sheet.Draw(catalogue, ReadFileSizes(stop_, camera_, catalogue), [](const Card&) {});
    drawn.Finish();
    EXPECT_EQ(sheet.Totals().drawn, catalogue.size());
    return sheet.Totals().kept;
  };
  EXPECT_EQ(redraw({MadePicture(1), MadePicture(3)}), 0U);
  EXPECT_EQ(camera_.reads, 2);
  EXPECT_EQ(redraw({MadePicture(1), MadePicture(3)}), 2U);
  EXPECT_EQ(camera_.reads, 0);
  camera_.files["IMG_0001.JPG"] = TinyJpeg::File(1, {90}, TinyJpeg::ExifPart(6));
  EXPECT_EQ(redraw({MadePicture(1), Timed(3, "2026-01-01 00:00:00")}), 0U);
  EXPECT_EQ(camera_.reads, 2);
}

TEST_F(SheetTest, APictureThatCannotBeReadIsReportedAndTheRestGoesOn) {
  camera_.onRead = [](const std::string& path) {
    if (path.ends_with("IMG_0002.JPG")) throw CameraError("truncated");
  };
  const SheetTotals totals = Draw(camera_, {MadePicture(1), MadePicture(2), MadePicture(3)});
  EXPECT_EQ(totals.drawn, 2U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(cards_[1].trouble, "cannot be read");
  EXPECT_THAT(list_, testing::HasSubstr("\"name\":\"IMG_0002\",\"time\":null,\"types\":[\"JPG\"],\"drawn\":false,"
                                        "\"links\":[],\"error\":\""));
}

TEST_F(SheetTest, AFileIsReadNoFurtherThanItIsLong) {
  camera_.endless = true;
  EXPECT_EQ(Draw(camera_, {MadePicture(1)}).failed, 1U);
  EXPECT_THAT(list_, testing::HasSubstr("IMG_0001.JPG: the camera sent a wrong answer (more came than the "));
}

TEST_F(SheetTest, AFileThatIsAnnouncedWithMoreThanItsFolderListsIsNotRead) {
  camera_.lie = -1;
  const std::size_t size = camera_.files["IMG_0001.JPG"].size();
  EXPECT_EQ(Draw(camera_, {MadePicture(1)}).failed, 1U);
  EXPECT_THAT(list_, testing::HasSubstr("the folder gives it " + std::to_string(size - 1) +
                                        " bytes, and the camera announces " + std::to_string(size) + " bytes"));
}

TEST_F(SheetTest, AMissingAndAnEmptyAndANonsenseFileAreNotDrawn) {
  camera_.files["IMG_0001.JPG"] = "";
  camera_.files["IMG_0003.JPG"] = "no picture";
  EXPECT_EQ(Draw(camera_, {MadePicture(1), MadePicture(3), MadePicture(4)}).failed, 3U);
  for (const Card& card : cards_) {
    EXPECT_EQ(card.trouble, "cannot be drawn");
  }
}

TEST_F(SheetTest, ADamagedPictureIsDrawnAndReported) {
  std::string& file = camera_.files["IMG_0003.JPG"];
  file.resize(file.size() - 4);
  const SheetTotals totals = Draw(camera_, {MadePicture(3)});
  EXPECT_EQ(totals.drawn, 1U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_EQ(cards_[0].trouble, "damaged");
}

TEST_F(SheetTest, APictureWithoutJpegIsNoFailure) {
  DcfObj raw = MadePicture(1);
  raw.hasJpg = 0;
  raw.hasRaw = 1;
  const SheetTotals totals = Draw(camera_, {raw});
  EXPECT_EQ(totals.without, 1U);
  EXPECT_EQ(totals.failed, 0U);
  EXPECT_EQ(cards_[0].trouble, "no JPEG");
}

TEST_F(SheetTest, TheFilesOwnTimeServesWhereTheCatalogueHasNone) {
  camera_.files["IMG_0001.JPG"] = TinyJpeg::File(1, {90}, TinyJpeg::ExifPart(1));
  Draw(camera_, {MadePicture(1), Timed(1, "2025-01-02 03:04:05")});
  EXPECT_EQ(cards_[0].time, "2026-03-14 15:09:26");
  EXPECT_EQ(cards_[1].time, "2025-01-02 03:04:05");
}

TEST_F(SheetTest, ACameraThatHasGoneEndsIt) {
  camera_.onRead = [](const std::string&) {
    throw CameraTransferError(
        "Transfer error\nCDB=[c4 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00]\nret=0xe00002c0 "
        "result.status=0x00000000");
  };
  EXPECT_THROW(Draw(camera_, {MadePicture(1)}), CameraError);
}

TEST_F(SheetTest, ARequestToStopIsNoticedBeforeTheNextPicture) {
  stop_.Request();
  EXPECT_THROW(Draw(camera_, {MadePicture(1)}), Stopped);
  EXPECT_EQ(camera_.reads, 0);
}

TEST(InSheetOrderTest, TimeDecidesWhereEveryPictureHasOne) {
  const auto numbers = [](const std::vector<DcfObj>& catalogue) {
    std::vector<int> all;
    for (const DcfObj& picture : InSheetOrder(catalogue)) all.push_back(picture.fileNumber);
    return all;
  };
  const DcfObj late = Timed(1, "2026-03-14 15:09:26");
  const DcfObj early = Timed(2, "2025-03-14 15:09:26");
  EXPECT_THAT(numbers({late, early}), ElementsAre(2, 1));
  EXPECT_THAT(numbers({late, early, MadePicture(3)}), ElementsAre(1, 2, 3));
}

}  // namespace
}  // namespace apps
