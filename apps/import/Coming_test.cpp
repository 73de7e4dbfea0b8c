#include "apps/import/Coming.h"

#include "apps/camera/testing/FakeCamera.h"
#include "apps/import/testing/SyncTest.h"

namespace apps {
namespace {

class ComingTest : public SyncFolderTest {
 protected:
  ComingTest() {
    camera_.folder = "I:\\DCIM\\100ABCDE";
    camera_.files = {{"IMG_0001.JPG", "one"}, {"IMG_0002.JPG", "two!"}};
  }
  Coming Written(const std::vector<DcfObj>& catalogue) {
    ListedSizes sizes(camera_);
    return ToBeWritten(Plan(catalogue), sizes, &folder_, manifest_);
  }
  void PutHere(const std::string& name, const std::string& text) const {
    folder_.Below("100ABCDE");
    std::ofstream(path_ + "/100ABCDE/" + name) << text;
  }

  FakeCamera camera_;
};

TEST_F(ComingTest, SumsTheListedSizesOfNewFiles) {
  const Coming coming = Written({Picture(1), Picture(2)});
  EXPECT_EQ(coming.files, 2U);
  EXPECT_EQ(coming.bytes, 7U);
  EXPECT_EQ(coming.Text(), "2 files (7 B)");
}

TEST_F(ComingTest, AFileThatItsFolderDoesNotListHasNoKnownSize) {
  const Coming coming = Written({Picture(1), Picture(9)});
  EXPECT_EQ(coming.unlisted, 1U);
  EXPECT_EQ(coming.Text(), "2 files (3 B, and 1 of unknown size)");
}

TEST_F(ComingTest, WhatWasFetchedBeforeIsNotWritten) {
  manifest_.Record({{Plan({Picture(1)}).items[0].Key(), "a.jpg", "", 3, false, false}});
  EXPECT_EQ(Written({Picture(1), Picture(2)}).bytes, 4U);
}

TEST_F(ComingTest, WhatIsHereWithoutItsRowIsNotWritten) {
  PutHere("IMG_0001.JPG", "one");
  EXPECT_EQ(Written({Picture(1), Picture(2)}).bytes, 4U);
}

TEST_F(ComingTest, AnotherFileOfThatNameTakesNothingOff) {
  PutHere("IMG_0001.JPG", "another one");
  EXPECT_EQ(Written({Picture(1), Picture(2)}).bytes, 7U);
}

TEST_F(ComingTest, PartsOfFilesThatWereCutAreHereAlready) {
  PutHere(".kelva-1.part", "tw");
  manifest_.RecordCut({Plan({Picture(2)}).items[0].Key(), 4, "100ABCDE/.kelva-1.part", 0});
  manifest_.RecordCut({Plan({Picture(1)}).items[0].Key(), 3, "100ABCDE/.kelva-gone.part", 0});
  EXPECT_EQ(Written({Picture(1), Picture(2)}).bytes, 5U);
}

TEST(ComingRoomTest, TooLittleRoomIsOneSentenceWithBothNumbers) {
  Coming coming;
  coming.Add(136'200'000);
  EXPECT_EQ(WhyTooLittleRoom(coming, 60'000'000, "out"),
            "Not enough room in out: 1 file (136.2 MB) to fetch, 60.0 MB free; make room there, or choose another "
            "folder.");
  EXPECT_EQ(WhyTooLittleRoom(coming, 136'200'000, "out"), "");
  EXPECT_EQ(WhyTooLittleRoom(coming, std::nullopt, "out"), "");
}

}  // namespace
}  // namespace apps
