#include "apps/kelva/verbs/GetFiles.h"

#include <gmock/gmock.h>

#include <initializer_list>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using testing::HasSubstr;

class GetFilesTest : public VerbTest {
 protected:
  GetFilesTest() {
    Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
    Put("DCIM/100ABCDE/MVI_0001.MP4", "a video");
    Put("DCIM/101ABCDE/deep/MVI_0002.MP4", "another");
    Put("DCIM/101ABCDE/MVI_0003.mp4", "third");
  }
  Ran Get(std::initializer_list<const char*> words) {
    std::vector<const char*> all = {"get", "--into", into.c_str()};
    all.insert(all.end(), words);
    return Run(all);
  }
  bool Here(const std::string& name) const { return std::filesystem::exists(folder / "new/out" / name); }

  const std::string into = (folder / "new/out").string();
};

TEST_F(GetFilesTest, AFolderComesWithAllBelowItUnderItsOwnName) {
  const Ran ran = Get({"-r", "I:/DCIM"});
  EXPECT_EQ(ran.code, ExitCode::kDone) << ran.err;
  EXPECT_EQ(ran.out, "4 fetched (22 B), 0 failed\n");
  EXPECT_EQ(Text(folder / "new/out/DCIM/101ABCDE/deep/MVI_0002.MP4"), "another");
  EXPECT_TRUE(Here("DCIM/100ABCDE/IMG_0001.JPG"));
}

TEST_F(GetFilesTest, TheDriveHasNoName) {
  Put("LOG.TXT", "log");
  EXPECT_EQ(Get({"-r", "I:/"}).out, "5 fetched (25 B), 0 failed\n");
  EXPECT_TRUE(Here("LOG.TXT"));
  EXPECT_TRUE(Here("DCIM/100ABCDE/IMG_0001.JPG"));
}

TEST_F(GetFilesTest, AFolderNeedsTheOption) {
  const Ran ran = Get({"I:/DCIM", "I:/DCIM/100ABCDE/IMG_0001.JPG"});
  EXPECT_EQ(ran.code, ExitCode::kPartial);
  EXPECT_THAT(ran.err, HasSubstr("I:/DCIM is a folder; --recursive fetches all that is in it."));
  EXPECT_TRUE(Here("IMG_0001.JPG"));
}

TEST_F(GetFilesTest, APatternMatchesFilesInAnyCaseOfLetters) {
  const Ran ran = Get({"DCIM/*/*.MP4"});
  EXPECT_EQ(ran.code, ExitCode::kDone) << ran.err;
  EXPECT_EQ(ran.out, "2 fetched (12 B), 0 failed\n");
  EXPECT_TRUE(Here("MVI_0001.MP4"));
  EXPECT_TRUE(Here("MVI_0003.mp4"));
}

TEST_F(GetFilesTest, AFileIsFoundInEitherCaseOfLetters) {
  const Ran ran = Get({"dcim/100abcde/img_0001.jpg", "DCIM/100ABCDE/mvi_0001.mp4"});
  EXPECT_EQ(ran.code, ExitCode::kDone) << ran.err;
  EXPECT_THAT(ran.err, HasSubstr("there is I:/DCIM/100ABCDE/MVI_0001.MP4."));
  EXPECT_EQ(Text(folder / "new/out/IMG_0001.JPG"), "one");
  EXPECT_EQ(Text(folder / "new/out/MVI_0001.MP4"), "a video");
}

TEST_F(GetFilesTest, APictureIsFoundByTheNameOfItsFileAlone) {
  const Ran ran = Get({"IMG_0001.JPG", "mvi_000[23].mp4"});
  EXPECT_EQ(ran.code, ExitCode::kDone) << ran.err;
  EXPECT_TRUE(Here("IMG_0001.JPG"));
  EXPECT_TRUE(Here("MVI_0003.mp4"));
  EXPECT_EQ(Run({"get", "-o", "-", "MVI_0001.MP4"}).out, "a video");
}

TEST_F(GetFilesTest, ANameInTwoFoldersNeedsItsFolder) {
  Put("DCIM/101ABCDE/IMG_0001.JPG", "other");
  const Ran ran = Get({"IMG_0001.JPG"});
  EXPECT_EQ(ran.code, ExitCode::kUsage);
  EXPECT_THAT(ran.err, HasSubstr("may mean I:/DCIM/100ABCDE/IMG_0001.JPG or I:/DCIM/101ABCDE/IMG_0001.JPG; name the "
                                 "folder too."));
  Put("IMG_0001.JPG", "on the drive itself");
  EXPECT_EQ(Get({"IMG_0001.JPG"}).code, ExitCode::kDone);
  EXPECT_EQ(Text(folder / "new/out/IMG_0001.JPG"), "on the drive itself");
}

TEST_F(GetFilesTest, APatternThatMatchesNothingIsAFailure) {
  const Ran ran = Get({"DCIM/*/*.AVI"});
  EXPECT_EQ(ran.code, ExitCode::kFailed);
  EXPECT_EQ(ran.err, "kelva: Nothing on the camera matches 'I:/DCIM/*/*.AVI'.\n");
}

TEST_F(GetFilesTest, AFolderThatAPatternMatchesLeavesItsFiles) {
  Put("LOG.TXT", "log");
  const Ran ran = Get({"*"});
  EXPECT_EQ(ran.code, ExitCode::kPartial);
  EXPECT_THAT(ran.err, HasSubstr("I:/DCIM is a folder; --recursive fetches all that is in it."));
  EXPECT_EQ(ran.out, "1 fetched (3 B), 1 failed\n");
  EXPECT_TRUE(Here("LOG.TXT"));
}

TEST_F(GetFilesTest, ProgressCountsTheFiles) {
  const std::string err = Get({"-r", "DCIM", "--json"}).err;
  EXPECT_THAT(err, HasSubstr(R"("total":22,)"));
  EXPECT_THAT(err, HasSubstr(R"("index":0,"files":0,"files_total":4,"phase":"reading")"));
}

TEST_F(GetFilesTest, OneThatFailsLeavesTheRest) {
  std::filesystem::create_directories(folder / "new/out/DCIM/100ABCDE");
  std::filesystem::create_directory(folder / "new/out/DCIM/100ABCDE/IMG_0001.JPG");
  const Ran ran = Get({"-r", "I:/DCIM"});
  EXPECT_EQ(ran.code, ExitCode::kPartial);
  EXPECT_EQ(ran.out, "3 fetched (19 B), 1 failed\n");
}

TEST_F(GetFilesTest, TwoFilesOfOneNameAreNeverWrittenOverEachOther) {
  Put("DCIM/101ABCDE/MVI_0001.MP4", "not the video");
  const Ran ran = Get({"--force", "DCIM/*/MVI_0001.MP4"});
  EXPECT_EQ(ran.code, ExitCode::kPartial);
  EXPECT_THAT(ran.err, HasSubstr("fetch them into two folders with --into"));
  EXPECT_EQ(Text(folder / "new/out/MVI_0001.MP4"), "a video");
}

}  // namespace
}  // namespace apps
