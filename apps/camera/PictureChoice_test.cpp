#include "apps/camera/PictureChoice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/camera/Picture.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/testing/SilentContext.h"

namespace apps {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class PictureChoiceTest : public SilentContext, public testing::Test {
 protected:
  static DcfObj Picture(int folder, int number, const std::string& date) {
    DcfObj picture{};
    picture.directoryNumber = folder;
    picture.fileNumber = number;
    std::string("ABCDE").copy(picture.directorySuffix, 5);
    date.copy(picture.block8, date.size());
    return picture;
  }
  std::vector<int> Chosen(std::vector<DcfObj> pictures) {
    PictureChoice(context_).Apply(pictures, context_);
    std::vector<int> numbers;
    for (const DcfObj& picture : pictures) numbers.push_back(picture.fileNumber);
    return numbers;
  }
  const std::vector<DcfObj> all_ = {Picture(100, 1, "2025-12-31 23:59:59"), Picture(100, 2, "2026-03-14 15:09:26"),
                                    Picture(101, 3, "2026-03-15 00:00:00"), Picture(101, 4, "no date")};
};

TEST_F(PictureChoiceTest, WithoutAnOptionAllAreMeant) {
  EXPECT_THAT(Chosen(all_), ElementsAre(1, 2, 3, 4));
  EXPECT_EQ(Said(), "");
}

TEST_F(PictureChoiceTest, SinceTakesTheStartOfADate) {
  call_.Add("since", "2026");
  EXPECT_THAT(Chosen(all_), ElementsAre(2, 3));
  EXPECT_THAT(Said(), HasSubstr("1 picture has no date in the catalogue and was left out."));
  for (const char* later : {"2026-03-15", "2026-03-14T15:10", "2026-03-14 15:09:27"}) {
    call_.Add("since", later);
    EXPECT_THAT(Chosen(all_), ElementsAre(3)) << later;
  }
  call_.Add("since", "2026-03");
  EXPECT_THAT(Chosen(all_), ElementsAre(2, 3));
}

TEST_F(PictureChoiceTest, AnythingElseIsNoDate) {
  for (const char* word : {"", "yesterday", "26-03-14", "2026-3-14", "2026-03-14 15", "2026-13-01", "2026-00",
                           "2026-02-29", "2026-03-14 25:00", "2026-03-14 15:60", "2026-03-14T15:09:60"}) {
    call_.Add("since", word);
    EXPECT_THROW(PictureChoice{context_}, Failure) << word;
  }
}

TEST_F(PictureChoiceTest, ALeapDayIsADate) {
  call_.Add("since", "2024-02-29 23:59:59");
  EXPECT_THAT(Chosen(all_), ElementsAre(1, 2, 3));
}

TEST_F(PictureChoiceTest, AFolderThatNoPictureHasIsNamed) {
  call_.Add("folder", "999*");
  EXPECT_THAT(Chosen(all_), ElementsAre());
  EXPECT_THAT(Said(), HasSubstr("No folder of the camera's pictures is named 999*."));
}

TEST_F(PictureChoiceTest, AFolderMayBeAPatternInAnyCase) {
  call_.Add("folder", "101abcde");
  EXPECT_THAT(Chosen(all_), ElementsAre(3, 4));
  call_.Add("folder", "10*");
  EXPECT_THAT(Chosen(all_), ElementsAre(1, 2, 3, 4));
  for (const char* path : {"101ABCDE/", "DCIM/101ABCDE", "I:/DCIM/101ABCDE", "/dcim/101*/"}) {
    call_.Add("folder", path);
    EXPECT_THAT(Chosen(all_), ElementsAre(3, 4)) << path;
  }
  call_.Add("folder", "102ABCDE");
  EXPECT_THAT(Chosen(all_), ElementsAre());
}

}  // namespace
}  // namespace apps
