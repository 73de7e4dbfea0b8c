#include "apps/camera/RemoteFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/testing/SilentContext.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

using testing::HasSubstr;

class RemoteFileTest : public testing::Test, protected SilentContext {
 protected:
  static std::string Error(const std::function<void()>& work) {
    try {
      work();
    } catch (const Failure& failure) {
      return failure.what();
    }
    return "no error";
  }
  std::string Read(const std::string& path) {
    const std::vector<char> bytes = ReadRemoteFile(context_, camera_, path);
    return {bytes.begin(), bytes.end()};
  }

  FakeCamera camera_;
};

TEST_F(RemoteFileTest, AFileIsRead) {
  camera_.files = {{"A.TXT", "abc"}};
  EXPECT_EQ(Read("I:\\A.TXT"), "abc");
}

TEST_F(RemoteFileTest, AnEmptyFileIsEmptyAndAMissingOneIsAnError) {
  camera_.files = {{"A.TXT", ""}};
  EXPECT_EQ(Read("I:\\A.TXT"), "");
  EXPECT_EQ(camera_.reads, 0);
  EXPECT_EQ(Error([this] { Read("I:\\B.TXT"); }),
            "There is no file I:/B.TXT on the camera; `kelva ls I:` shows what is there.");
}

TEST_F(RemoteFileTest, AFolderIsNoFile) {
  camera_.folders = {"DCIM"};
  EXPECT_THAT(Error([this] { Read("I:\\DCIM"); }), HasSubstr("I:/DCIM is a folder"));
}

TEST_F(RemoteFileTest, AFileThatGoesOnBeyondItsListedSizeEndsThere) {
  camera_.files = {{"A.TXT", "abc"}};
  camera_.endless = true;
  EXPECT_THROW(Read("I:\\A.TXT"), CameraError);
  EXPECT_THROW(WriteRemoteFile(context_, camera_, {'a', 'b'}, "I:\\B.TXT"), CameraError);
}

TEST_F(RemoteFileTest, AFileThatKeepsChangingIsAnErrorAfterTwoReads) {
  camera_.files = {{"A.TXT", "abc"}};
  camera_.lie = 2;
  EXPECT_THAT(Error([this] { Read("I:\\A.TXT"); }), HasSubstr("with 5 bytes but sent 3, twice"));
  EXPECT_EQ(camera_.reads, 2);
}

TEST_F(RemoteFileTest, WhatWasWrittenIsReadBack) {
  WriteRemoteFile(context_, camera_, {'x', 'y'}, "I:\\A.TXT");
  EXPECT_EQ(camera_.files["A.TXT"], "xy");
  EXPECT_EQ(camera_.reads, 1);
}

TEST_F(RemoteFileTest, SomethingElseOnTheCameraIsAnError) {
  camera_.damage = "!";
  EXPECT_THAT(Error([this] { WriteRemoteFile(context_, camera_, {'x'}, "I:\\A.TXT"); }), HasSubstr("something else"));
}

TEST_F(RemoteFileTest, AWriteThatIsStoppedLeavesNothingOnTheCamera) {
  stop_.Request();
  EXPECT_THROW(WriteRemoteFile(context_, camera_, {'x'}, "I:\\A.TXT"), Stopped);
  EXPECT_TRUE(camera_.files.empty());
}

TEST_F(RemoteFileTest, AFileIsDeleted) {
  camera_.files = {{"A.TXT", "abc"}};
  DeleteRemoteFile(camera_, "I:\\A.TXT");
  EXPECT_TRUE(camera_.files.empty());
  EXPECT_THAT(Error([this] { DeleteRemoteFile(camera_, "I:\\A.TXT"); }), HasSubstr("There is no file"));
}

TEST_F(RemoteFileTest, AFileThatStaysIsARefusal) {
  camera_.files = {{"A.TXT", "abc"}};
  camera_.stubborn = true;
  EXPECT_THAT(Error([this] { DeleteRemoteFile(camera_, "I:\\A.TXT"); }), HasSubstr("still lists I:/A.TXT"));
  camera_.refuses = true;
  EXPECT_THAT(Error([this] { DeleteRemoteFile(camera_, "I:\\A.TXT"); }), HasSubstr("refused to delete"));
}

TEST_F(RemoteFileTest, WhatIsSentInPartIsTakenBack) {
  camera_.writeBreaks = true;
  EXPECT_THROW(WriteRemoteFile(context_, camera_, {'a', 'b'}, "I:\\A.TXT"), CameraTransferError);
  EXPECT_EQ(camera_.files.count("A.TXT"), 0U);
}

TEST_F(RemoteFileTest, TheErrorOfTheWritingStandsWhenItCannotBeTakenBack) {
  camera_.writeBreaks = true;
  camera_.forbidden = "A.TXT";
  EXPECT_THROW(WriteRemoteFile(context_, camera_, {'a', 'b'}, "I:\\A.TXT"), CameraTransferError);
}

}  // namespace
}  // namespace apps
