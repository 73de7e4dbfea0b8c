#include "apps/import/Names.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "apps/camera/testing/MadePicture.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

DcfObj Picture(int folder, int number, const char* key = "") {
  DcfObj picture = MadePicture(number, folder, key);
  picture.hasRaw = 1;
  return picture;
}

class NamesTest : public testing::Test {
 protected:
  void Put(const std::string& name, const std::string& text = "x") const {
    const auto path = std::filesystem::path(scratch_.Path()) / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
  }

  const base::ScratchFolder scratch_;
  const TargetFolder folder_ = TargetFolder::Open(scratch_.Path());
  const Pattern byFolder_{"{folder}/{name}"};
  const Pattern flat_{"{name}"};
  Names names_{&folder_, byFolder_, "K1"};
  Names flatNames_{&folder_, flat_, "K1"};
};

TEST_F(NamesTest, AFreeNameHasNoNumber) {
  EXPECT_EQ(names_.NumbersFor(Picture(100, 1)).Likely(), 1);
}

TEST_F(NamesTest, OnePictureOfOneNameAfterAnotherIsCounted) {
  EXPECT_EQ(flatNames_.NumbersFor(Picture(100, 1)).Likely(), 1);
  EXPECT_EQ(flatNames_.NumbersFor(Picture(101, 1)).Likely(), 2);
  EXPECT_EQ(flatNames_.NumbersFor(Picture(102, 1)).Likely(), 3);
  EXPECT_EQ(flatNames_.NumbersFor(Picture(102, 2)).Likely(), 1);
}

TEST_F(NamesTest, ANameIsFreeOnlyIfAllFourAre) {
  for (const char* name : {"IMG_0001.JPG", "IMG_0002.RAW", "IMG_0003.TXT", "IMG_0004.128"}) Put(name);
  for (const int number : {1, 2, 3, 4}) EXPECT_EQ(flatNames_.NumbersFor(Picture(100, number)).Likely(), 2) << number;
  EXPECT_EQ(flatNames_.NumbersFor(Picture(100, 5)).Likely(), 1);
}

TEST_F(NamesTest, ALaterFileOfAPictureTakesTheNumberOfTheEarlier) {
  Put("IMG_0001.JPG", "an older picture");
  Put("IMG_0001-2.JPG", "this one");
  EXPECT_EQ(flatNames_.NumbersFor(Picture(100, 1), {{1, "IMG_0001-2.JPG"}}).Likely(), 2);
}

TEST_F(NamesTest, FilesThatAreStoredAreNotInTheWayOfTheirOwnPicture) {
  for (const char* name : {"IMG_0001.RAW", "IMG_0001.TXT", "IMG_0001.128", "IMG_0002.RAW", "IMG_0002.TXT"}) Put(name);
  EXPECT_EQ(
      flatNames_.NumbersFor(Picture(100, 1), {{2, "IMG_0001.RAW"}, {3, "IMG_0001.TXT"}, {4, "IMG_0001.128"}}).Likely(),
      1);
  EXPECT_EQ(flatNames_.NumbersFor(Picture(100, 2), {{2, "IMG_0002.RAW"}, {3, "else/IMG_0002.TXT"}}).Likely(), 2);
}

TEST_F(NamesTest, WhereThatNumberIsTakenOrTheFileWasRenamedAFreeOneIsChosen) {
  Put("IMG_0001.JPG");
  Put("IMG_0001.RAW", "another one's");
  EXPECT_EQ(flatNames_.NumbersFor(Picture(100, 1), {{1, "IMG_0001.JPG"}}).Likely(), 2);
  EXPECT_EQ(flatNames_.NumbersFor(Picture(100, 2), {{1, "holiday.jpg"}}).Likely(), 1);
}

TEST_F(NamesTest, APictureThatIsHereWithoutAListIsRecognisedByItsKey) {
  Put("IMG_0001.JPG", "abc");
  EXPECT_EQ(flatNames_.NumbersFor(Picture(100, 1, "a9993e364706816aba3e25717850c26c9cd0d89d")).Likely(), 1);
  Put("IMG_0002.JPG", "abd");
  EXPECT_EQ(flatNames_.NumbersFor(Picture(100, 2, "a9993e364706816aba3e25717850c26c9cd0d89d")).Likely(), 2);
}

TEST_F(NamesTest, PicturesWithoutNumberMayShareAName) {
  // A hostile catalogue. Counting from 1 for each would take minutes.
  Put("IMG_0001.JPG");
  Put("IMG_0001-3.JPG");
  int last = 0;
  for (int folder = 0; folder < 50'000; ++folder) last = flatNames_.NumbersFor(Picture(folder, 1)).Likely();
  EXPECT_EQ(last, 50'002) << "1 and 3 are taken";
}

TEST_F(NamesTest, ANameWithANumberOfItsOwnIsNoNumberedOne) {
  Put("IMG_0001-x.JPG");
  EXPECT_EQ(flatNames_.NumbersFor(Picture(100, 1), {{1, "IMG_0001-x.JPG"}}).Likely(), 1);
  EXPECT_EQ(flatNames_.NumbersFor(Picture(100, 2), {{1, "IMG_0002-1.JPG"}}).Likely(), 1);
}

TEST_F(NamesTest, WithoutATargetOnlyTheCatalogueCounts) {
  Names names(nullptr, flat_, "K1");
  EXPECT_EQ(names.NumbersFor(Picture(100, 1)).Likely(), 1);
  EXPECT_EQ(names.NumbersFor(Picture(101, 1)).Likely(), 2);
}

}  // namespace
}  // namespace apps
