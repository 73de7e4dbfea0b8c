#include <gmock/gmock.h>

#include "apps/decoder/testing/TinyJpeg.h"
#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using testing::HasSubstr;

class ThumbVerbTest : public VerbTest {
 protected:
  ThumbVerbTest() {
    const std::string thumbnail = TinyJpeg::File(2, {90, 90});
    Put("DCIM/100ABCDE/IMG_0001.JPG",
        TinyJpeg::File(3, {90, 90, 90}, TinyJpeg::ExifPartWith(thumbnail, 6)) + std::string(70'000, 'x'));
    Put("DCIM/100ABCDE/IMG_0002.JPG", TinyJpeg::File(3, {90, 90, 90}) + std::string(70'000, 'x'));
    Put("DCIM/100ABCDE/IMG_0003.JPG", "no picture");
    Put("DCIM/101ABCDE/IMG_0001.JPG", TinyJpeg::File(1, {90}));
    Put("DCIM/101ABCDE/IMG_0004.RAW", "raw");
    std::filesystem::create_directory(into);
  }
  Ran Thumb(std::vector<const char*> words) {
    words.insert(words.begin(), "thumb");
    words.insert(words.end(), {"-d", into.c_str()});
    return Run(words);
  }

  const std::string into = folder / "small";
};

TEST_F(ThumbVerbTest, AThumbnailIsTheOneInExifOrDrawnFromTheWholeFile) {
  EXPECT_THAT(Thumb({"100ABCDE/IMG_0001", "I:/DCIM/100ABCDE/IMG_0002.JPG", "--json"}).out,
              HasSubstr(R"(,"pictures":[{"path":"I:\\DCIM\\100ABCDE\\IMG_0001.JPG","file":")" + into +
                        R"(/IMG_0001_thumb.jpg","width":8,"height":16,"time":"2026-03-14 15:09:26"},)"
                        R"({"path":"I:\\DCIM\\100ABCDE\\IMG_0002.JPG","file":")" +
                        into + R"(/IMG_0002_thumb.jpg","width":24,"height":8,"time":null}],"failed":0})"));
  EXPECT_EQ(Text(into + "/IMG_0001_thumb.jpg").substr(0, 3), "\xFF\xD8\xFF");
}

TEST_F(ThumbVerbTest, WhatWasWrittenIsNamed) {
  const Ran ran = Thumb({"100ABCDE/IMG_000[12].JPG"});
  EXPECT_EQ(ran.out, into + "/IMG_0001_thumb.jpg\n" + into + "/IMG_0002_thumb.jpg\n");
  EXPECT_EQ(ran.code, ExitCode::kDone);
}

TEST_F(ThumbVerbTest, AnExistingFileIsKeptUnlessForced) {
  Thumb({"IMG_0002"});
  const Ran again = Thumb({"IMG_0002"});
  EXPECT_EQ(again.code, ExitCode::kFailed);
  EXPECT_THAT(again.err, HasSubstr("_thumb.jpg already, and it was kept; --force replaces it."));
  EXPECT_EQ(Thumb({"IMG_0002", "--force"}).code, ExitCode::kDone);
}

TEST_F(ThumbVerbTest, TwoPicturesOfOneNameDoNotShareAFile) {
  const Ran ran = Thumb({"IMG_0001*", "--force"});
  EXPECT_EQ(ran.code, ExitCode::kPartial);
  EXPECT_THAT(ran.err, HasSubstr("The thumbnail of another of these pictures is "));
}

TEST_F(ThumbVerbTest, WhatCannotBeDrawnIsReportedAndTheRestGoesOn) {
  const Ran ran = Thumb({"IMG_0003", "IMG_0004", "IMG_0005", "IMG_0002"});
  EXPECT_EQ(ran.code, ExitCode::kPartial);
  EXPECT_THAT(ran.err, HasSubstr("There is no thumbnail of I:/DCIM/100ABCDE/IMG_0003.JPG: it is no JPEG file"));
  EXPECT_THAT(ran.err,
              HasSubstr("There is no thumbnail of I:/DCIM/101ABCDE/IMG_0004.RAW: the picture has no JPEG file."));
  EXPECT_THAT(ran.err, HasSubstr("No picture in the camera's catalogue is called IMG_0005"));
  EXPECT_EQ(ran.out, into + "/IMG_0002_thumb.jpg\n");
}

}  // namespace
}  // namespace apps
