#include "apps/import/AskTimes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "apps/decoder/testing/TinyJpeg.h"
#include "apps/import/testing/SyncFixture.h"

namespace apps {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class AskTimesTest : public SyncTest {
 protected:
  AskTimesTest() {
    camera_.files = {{"IMG_0001.JPG", Jpeg("2026:03:14 15:09:26")}, {"IMG_0001.RAW", "raw"}, {"IMG_0002.JPG", "none"}};
    camera_.onRead = [this](const std::string& path) { read_.push_back(path.substr(path.rfind('\\') + 1)); };
    camera_.open = true;
  }
  static std::string Jpeg(const std::string& time) { return "\xFF\xD8" + TinyJpeg::ExifPart(1, time); }
  static DcfObj WithRaw(int number) {
    DcfObj picture = Picture(number);
    picture.hasRaw = 1;
    return picture;
  }
  SyncPlan PlanOf(const std::vector<DcfObj>& catalogue, const std::vector<int>& types, const char* pattern) {
    return MakePlan(catalogue, "K1", types, Pattern(pattern), manifest_, &folder_,
                    TimesForNames(context_, Shared(camera_), times_));
  }
  SyncTotals Fetch(const SyncPlan& plan) {
    Sync sync(context_, Shared(camera_), folder_, manifest_, {}, &times_);
    EXPECT_FALSE(sync.Run(plan).has_value());
    return sync.Totals();
  }
  std::string TimeOf(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(::stat((path_ + "/" + name).c_str(), &status), 0) << name;
    return status.st_mtime == MomentHere(*ParseTaken("2026-03-14 15:09:26")) ? "taken" : "fetched";
  }
  static std::vector<std::string> Names(const SyncPlan& plan) {
    std::vector<std::string> names;
    for (const SyncItem& item : plan.items) names.push_back(item.LocalText());
    return names;
  }

  PictureTimes times_;
  std::vector<std::string> read_;
};

TEST_F(AskTimesTest, AllFilesOfAPictureAreNamedByTheExifTimeOfItsJpeg) {
  const SyncPlan plan = PlanOf({WithRaw(1), Picture(2)}, {1, 2}, "{date}_{time}/{name}");
  EXPECT_THAT(Names(plan), ElementsAre("2026-03-14_150926/IMG_0001.JPG", "2026-03-14_150926/IMG_0001.RAW",
                                       "undated_undated/IMG_0002.JPG"));
  EXPECT_THAT(read_, ElementsAre("IMG_0001.JPG", "IMG_0002.JPG"));
  EXPECT_THAT(Said(), HasSubstr("Read up to 64 KiB of each of 2 pictures for their dates."));
}

TEST_F(AskTimesTest, ThePicturesOfOneTypeHaveTheDateOfTheJpegToo) {
  EXPECT_THAT(Names(PlanOf({WithRaw(1)}, {2}, "{date}/{name}")), ElementsAre("2026-03-14/IMG_0001.RAW"));
}

TEST_F(AskTimesTest, APatternWithoutADateReadsNothing) {
  PlanOf({WithRaw(1)}, {1, 2}, "{folder}/{name}");
  EXPECT_THAT(read_, IsEmpty());
  EXPECT_THAT(Said(), IsEmpty());
}

TEST_F(AskTimesTest, AKnownPictureIsNotLookedInto) {
  Fetch(PlanOf({WithRaw(1)}, {1, 2}, "{folder}/{name}"));
  read_.clear();
  PlanOf({WithRaw(1)}, {1, 2}, "{date}/{name}");
  EXPECT_THAT(read_, IsEmpty());
}

TEST_F(AskTimesTest, FilesGetTheTimeOfTheirPictureAndNothingIsReadTwice) {
  const SyncTotals totals = Fetch(PlanOf({WithRaw(1), Picture(2)}, {1, 2}, "{name}"));
  EXPECT_EQ(TimeOf("IMG_0001.JPG"), "taken");
  EXPECT_EQ(TimeOf("IMG_0001.RAW"), "taken");
  EXPECT_EQ(TimeOf("IMG_0002.JPG"), "fetched");
  EXPECT_EQ(totals.undated, 1U);
  EXPECT_THAT(read_, ElementsAre("IMG_0001.JPG", "IMG_0001.RAW", "IMG_0002.JPG"));
}

TEST_F(AskTimesTest, ARawWhoseJpegIsNotFetchedHasItsTimeToo) {
  Fetch(PlanOf({WithRaw(1)}, {2}, "{name}"));
  EXPECT_EQ(TimeOf("IMG_0001.RAW"), "taken");
  EXPECT_THAT(read_, ElementsAre("IMG_0001.JPG", "IMG_0001.RAW"));
}

TEST_F(AskTimesTest, ADatedNameNeedsNoSecondLook) {
  Fetch(PlanOf({WithRaw(1)}, {1, 2}, "{date}-{name}"));
  EXPECT_EQ(TimeOf("2026-03-14-IMG_0001.RAW"), "taken");
  EXPECT_THAT(read_, ElementsAre("IMG_0001.JPG", "IMG_0001.JPG", "IMG_0001.RAW"));
}

TEST_F(AskTimesTest, AJpegThatCannotBeReadCostsNoOtherFile) {
  camera_.files.erase("IMG_0001.JPG");
  const SyncTotals totals = Fetch(PlanOf({WithRaw(1)}, {2}, "{name}"));
  EXPECT_EQ(totals.stored, 1U);
  EXPECT_EQ(totals.undated, 1U);
  EXPECT_EQ(totals.failed, 0U);
}

TEST_F(AskTimesTest, ACameraThatHasGoneEndsTheQuestions) {
  camera_.onRead = [](const std::string&) { throw Gone(); };
  EXPECT_THROW(PlanOf({WithRaw(1)}, {1}, "{date}/{name}"), CameraTransferError);
}

TEST_F(AskTimesTest, ARequestToStopEndsTheQuestions) {
  stop_.Request();
  EXPECT_THROW(PlanOf({WithRaw(1)}, {1}, "{date}/{name}"), Stopped);
}

TEST_F(AskTimesTest, TroubleIsOneNote) {
  PictureTimes broken("/nonexistent/kelva-thumbnail");
  NoteTrouble(context_, broken);
  EXPECT_EQ(Said(), "");
  for (const DcfObj& picture : {Picture(1), Picture(2)}) {
    AskTime(context_, Shared(camera_), picture, broken);
    EXPECT_FALSE(broken.Of(picture));
  }
  NoteTrouble(context_, broken);
  EXPECT_THAT(Said(), HasSubstr("install kelva again. Dates are those of the catalogue, where it has them.\n"));
}

}  // namespace
}  // namespace apps
