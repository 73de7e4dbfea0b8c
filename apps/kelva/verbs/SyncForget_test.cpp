#include "apps/kelva/verbs/SyncForget.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using testing::HasSubstr;

class SyncForgetTest : public VerbTest {
 protected:
  SyncForgetTest() {
    Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
    Put("DCIM/100ABCDE/IMG_0002.JPG", "two");
    Put("DCIM/100ABCDE/MVI_0001.MP4", "a video");
  }
  Ran Sync(std::vector<const char*> words) {
    words.insert(words.begin(), "sync");
    words.push_back(target.c_str());
    return Run(words);
  }

  const std::string target = (folder / "out").string();
};

TEST_F(SyncForgetTest, WhatWasThrownAwayIsDeletedOnTheCameraByTheNextRun) {
  EXPECT_EQ(Sync({"--everything"}).code, ExitCode::kDone);
  std::filesystem::remove(target + "/100ABCDE/IMG_0001.JPG");
  std::filesystem::remove(target + "/100ABCDE/MVI_0001.MP4");
  EXPECT_EQ(Sync({"--delete-after-verify", "--everything"}).code, ExitCode::kPartial);
  EXPECT_TRUE(Has("DCIM/100ABCDE/IMG_0001.JPG") && Has("DCIM/100ABCDE/MVI_0001.MP4"));
  const Ran forgot = Sync({"--forget", "IMG_0001", "--forget", "*.mp4"});
  EXPECT_EQ(forgot.code, ExitCode::kDone) << forgot.err;
  EXPECT_EQ(forgot.out,
            "I:/DCIM/100ABCDE/IMG_0001.JPG need not be here any more.\n"
            "I:/DCIM/100ABCDE/MVI_0001.MP4 need not be here any more.\n");
  EXPECT_EQ(Sync({"--forget", "IMG_0001"}).out, "I:/DCIM/100ABCDE/IMG_0001.JPG was forgotten before.\n");
  EXPECT_EQ(Sync({"--delete-after-verify", "--everything"}).code, ExitCode::kDone);
  EXPECT_FALSE(Has("DCIM/100ABCDE/IMG_0001.JPG") || Has("DCIM/100ABCDE/MVI_0001.MP4"));
}

TEST_F(SyncForgetTest, AFileThatIsHereOrEditedOrWasNeverFetchedIsSaid) {
  EXPECT_EQ(Sync({}).code, ExitCode::kDone);
  EXPECT_EQ(Sync({"--forget", "IMG_0001"}).err,
            "kelva: Cannot forget IMG_0001: 100ABCDE/IMG_0001.JPG is here; delete or move it first.\n");
  std::ofstream(target + "/100ABCDE/IMG_0001.JPG") << "mine";
  EXPECT_EQ(Sync({"--forget", "IMG_0001"}).err,
            "kelva: Cannot forget IMG_0001: 100ABCDE/IMG_0001.JPG was edited after it was fetched; delete or move it "
            "first.\n");
  Put("DCIM/100ABCDE/IMG_0003.JPG", "new");
  EXPECT_THAT(Sync({"--forget", "IMG_0003"}).err, HasSubstr("Cannot forget IMG_0003: nothing of it was fetched into "));
  EXPECT_EQ(Sync({"--forget", "IMG_0009"}).code, ExitCode::kFailed);
}

TEST_F(SyncForgetTest, TheResultNamesTheFiles) {
  EXPECT_EQ(Sync({}).code, ExitCode::kDone);
  std::filesystem::remove(target + "/100ABCDE/IMG_0001.JPG");
  const Ran ran = Sync({"--json", "--forget", "IMG_0001.JPG", "--forget", "IMG_0002"});
  EXPECT_EQ(ran.code, ExitCode::kPartial);
  EXPECT_THAT(ran.out, HasSubstr(R"("forgotten":[{"picture":"IMG_0001.JPG","files":[{"path":)"
                                 R"("I:\\DCIM\\100ABCDE\\IMG_0001.JPG","was":"fetched"}]},{"path":"IMG_0002",)"));
  EXPECT_THAT(Sync({"--json", "--forget", "IMG_0001"}).out, HasSubstr(R"("was":"forgotten"}]}])"));
}

TEST_F(SyncForgetTest, NothingElseIsDoneInTheSameRun) {
  for (const char* option : {"--all", "--dry-run", "--verify", "--delete-after-verify"}) {
    EXPECT_EQ(Sync({option, "--forget", "IMG_0001"}).code, ExitCode::kUsage) << option;
  }
}

}  // namespace
}  // namespace apps
