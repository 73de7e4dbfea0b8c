#include "apps/camera/RemoteFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <functional>
#include <span>
#include <string>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/testing/SilentContext.h"
#include "src/wifi/CameraError.h"
#include "src/wifi/testing/Bytes.h"

namespace apps {
namespace {

using testing::HasSubstr;

class RemoteFileTest : public testing::Test, protected SilentContext {
 protected:
  RemoteFileTest() { camera_.open = true; }
  static std::string Error(const std::function<void()>& work) {
    try {
      work();
    } catch (const Failure& failure) {
      return failure.what();
    }
    return "no error";
  }
  std::string Read(const std::string& path) {
    std::string text;
    RemoteFile file(context_, pointer_, path);
    file.Read([&](std::span<const char> bytes) {
      EXPECT_LE(bytes.size(), 65'536U);
      text.append(bytes.data(), bytes.size());
    });
    EXPECT_EQ(file.Size(), text.size());
    return text;
  }
  void Write(const std::string& text, const std::string& path) {
    std::size_t given = 0;
    WriteRemoteFile(context_, pointer_, path, static_cast<std::uint32_t>(text.size()),
                    [&](std::span<char> chunk) { given += text.copy(chunk.data(), chunk.size(), given); });
  }

  const boost::shared_ptr<FakeCamera> pointer_ = boost::make_shared<FakeCamera>();
  FakeCamera& camera_ = *pointer_;
};

TEST_F(RemoteFileTest, AFileIsRead) {
  camera_.files = {{"A.TXT", "abc"}};
  EXPECT_EQ(Read("I:\\A.TXT"), "abc");
}

TEST_F(RemoteFileTest, ALargeFileComesInPieces) {
  for (const std::size_t size : {65'535U, 65'536U, 65'537U, 200'000U}) {
    camera_.files = {{"A.TXT", wifi_testing::Pattern(size)}};
    EXPECT_TRUE(Read("I:\\A.TXT") == camera_.files["A.TXT"]) << size;
  }
}

TEST_F(RemoteFileTest, AFileIsSummedInPieces) {
  camera_.files["A.JPG"] = std::string(1'000'000, 'a');
  kelva::FileReader reader(pointer_, "I:\\A.JPG");
  std::size_t came = 0;
  EXPECT_EQ(Sha1OfRemote(reader, [&came](std::size_t count) { came += count; }),
            "34aa973cd4c4daa4f61eeb2bdbad27316534016f");  // a million times "a", of the standard of SHA-1
  EXPECT_EQ(came, 1'000'000U);
}

TEST_F(RemoteFileTest, AFileThatGrewOnceIsRead) {
  camera_.files = {{"A.TXT", "abc"}};
  camera_.onRead = [this](const std::string&) {
    if (camera_.reads == 1) camera_.files["A.TXT"] = "abcd";
  };
  EXPECT_EQ(Read("I:\\A.TXT"), "abcd");
  EXPECT_EQ(camera_.reads, 2);
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
  EXPECT_THROW(Write("ab", "I:\\B.TXT"), CameraError);
}

TEST_F(RemoteFileTest, AFileThatKeepsChangingIsAnErrorAfterTwoReads) {
  camera_.files = {{"A.TXT", "abc"}};
  camera_.lie = 2;
  EXPECT_THAT(Error([this] { Read("I:\\A.TXT"); }), HasSubstr("with 5 bytes but announces 3, twice"));
  EXPECT_EQ(camera_.reads, 2);
}

TEST_F(RemoteFileTest, WhatWasWrittenIsReadBack) {
  Write("xy", "I:\\A.TXT");
  EXPECT_EQ(camera_.files["A.TXT"], "xy");
  EXPECT_EQ(camera_.reads, 1);
}

TEST_F(RemoteFileTest, SomethingElseOnTheCameraIsAnError) {
  camera_.damage = "!";
  EXPECT_THAT(Error([this] { Write("x", "I:\\A.TXT"); }), HasSubstr("something else"));
}

TEST_F(RemoteFileTest, AByteThatDiffersIsAnError) {
  const std::string text = wifi_testing::Pattern(100'000);
  Write(text, "I:\\A.TXT");
  EXPECT_TRUE(camera_.files["A.TXT"] == text);
  camera_.onRead = [this](const std::string&) { camera_.files["A.TXT"][70'000] ^= 1; };
  EXPECT_THAT(Error([&] { Write(text, "I:\\A.TXT"); }), HasSubstr("something else"));
}

TEST_F(RemoteFileTest, ASourceThatFailsLeavesNothingOnTheCamera) {
  const auto source = [](std::span<char>) { throw Failure(ExitCode::kFailed, "gone"); };
  EXPECT_EQ(Error([&] { WriteRemoteFile(context_, pointer_, "I:\\A.TXT", 5, source); }), "gone");
  EXPECT_TRUE(camera_.files.empty());
}

TEST_F(RemoteFileTest, AWriteThatIsStoppedLeavesNothingOnTheCamera) {
  stop_.Request();
  EXPECT_THROW(Write("x", "I:\\A.TXT"), Stopped);
  EXPECT_TRUE(camera_.files.empty());
}

TEST_F(RemoteFileTest, AFileIsDeleted) {
  camera_.files = {{"A.TXT", "abc"}};
  RemoteDeletions deletions(camera_);
  deletions.Delete("I:\\A.TXT");
  EXPECT_TRUE(camera_.files.empty());
  EXPECT_NO_THROW(deletions.CheckGone("I:\\A.TXT"));
  deletions.Renew();
  EXPECT_THAT(Error([&] { deletions.Delete("I:\\A.TXT"); }), HasSubstr("There is no file"));
}

TEST_F(RemoteFileTest, AFileWhoseNameDiffersInCaseAloneIsAnotherOne) {
  camera_.files = {{"A.TXT", "abc"}, {"a.txt", "other"}};
  RemoteDeletions deletions(camera_);
  deletions.Delete("I:\\A.TXT");
  EXPECT_NO_THROW(deletions.CheckGone("I:\\A.TXT"));
  EXPECT_EQ(camera_.files.size(), 1U);
}

TEST_F(RemoteFileTest, AFolderIsListedTwiceHoweverManyOfItsFilesAreDeleted) {
  constexpr int kFiles = 100;
  const auto path = [](int number) { return "I:\\F" + std::to_string(number); };
  for (int i = 0; i < kFiles; ++i) camera_.files["F" + std::to_string(i)] = "x";
  camera_.listings = 0;
  RemoteDeletions deletions(camera_);
  for (int i = 0; i < kFiles; ++i) deletions.Delete(path(i));
  for (int i = 0; i < kFiles; ++i) deletions.CheckGone(path(i));
  EXPECT_TRUE(camera_.files.empty());
  EXPECT_EQ(camera_.listings, 2);
}

TEST_F(RemoteFileTest, AFileThatAnotherProgramDeletedInItsTurnIsMissing) {
  camera_.files = {{"A.TXT", "abc"}, {"B.TXT", "abc"}};
  RemoteDeletions deletions(camera_);
  deletions.Delete("I:\\A.TXT");
  camera_.files.clear();
  deletions.Renew();
  EXPECT_THAT(Error([&] { deletions.Delete("I:\\B.TXT"); }), HasSubstr("There is no file"));
}

TEST_F(RemoteFileTest, AFileThatStaysIsARefusal) {
  camera_.files = {{"A.TXT", "abc"}};
  camera_.stubborn = true;
  RemoteDeletions deletions(camera_);
  deletions.Delete("I:\\A.TXT");
  EXPECT_THAT(Error([&] { deletions.CheckGone("I:\\A.TXT"); }), HasSubstr("still lists I:/A.TXT"));
  camera_.refuses = true;
  EXPECT_THAT(Error([&] { deletions.Delete("I:\\A.TXT"); }), HasSubstr("refused to delete"));
}

TEST_F(RemoteFileTest, WhatIsSentInPartIsTakenBack) {
  camera_.writeBreaks = true;
  EXPECT_THROW(Write("ab", "I:\\A.TXT"), CameraTransferError);
  EXPECT_EQ(camera_.files.count("A.TXT"), 0U);
}

TEST_F(RemoteFileTest, TheErrorOfTheWritingStandsWhenItCannotBeTakenBack) {
  camera_.writeBreaks = true;
  camera_.forbidden = "A.TXT";
  EXPECT_THROW(Write("ab", "I:\\A.TXT"), CameraTransferError);
}

}  // namespace
}  // namespace apps
