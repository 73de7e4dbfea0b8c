#include "apps/camera/Meant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/testing/SilentContext.h"

namespace apps {
namespace {

using testing::ElementsAre;

// A camera with a tree of folders.
class TreeCamera : public FakeCamera {
 public:
  std::vector<CameraDirent> ReadDir(const char* path) override {
    ++listings;
    if (!tree.contains(path)) {
      throw CameraTransferError(
          "Transfer error\nCDB=[c2 00 03 00 00 00 00 00 00 00 00 00 00 00 00 00]\nret=0x00000000 "
          "result.status=0x01140502");
    }
    return tree[path];
  }

  std::map<std::string, std::vector<CameraDirent>> tree = {
      {"I:", {{"LABEL", 0, 0x08}, {"DCIM", 0, 0x10}, {"A.TXT", 3, 0x20}}},
      {"I:\\DCIM", {{".", 0, 0x10}, {"..", 0, 0x10}, {"100ABCDE", 0, 0x10}, {"101ABCDE", 0, 0x10}}},
      {"I:\\DCIM\\100ABCDE", {{"IMG_0001.JPG", 3, 0x20}, {"MVI_0002.MP4", 3, 0x20}, {"a[1].jpg", 3, 0x20}}},
      {"I:\\DCIM\\101ABCDE", {{"MVI_0003.MP4", 3, 0x20}, {"img_0004.jpg", 3, 0x20}, {"IMG_0004.JPG", 3, 0x20}}},
  };
};

class MeantTest : public testing::Test, protected SilentContext {
 protected:
  std::vector<std::string> Find(const std::string& path) { return Meant(context_, camera_, path); }

  TreeCamera camera_;
};

TEST_F(MeantTest, APathAsListedMeansItselfAfterOneListing) {
  EXPECT_THAT(Find("I:\\DCIM\\100ABCDE\\IMG_0001.JPG"), ElementsAre("I:\\DCIM\\100ABCDE\\IMG_0001.JPG"));
  EXPECT_EQ(camera_.listings, 1);
  EXPECT_EQ(Said(), "");
  EXPECT_THAT(Find("I:"), ElementsAre("I:"));
}

TEST_F(MeantTest, ANameAloneMeansAFileOfThePictureFolders) {
  EXPECT_THAT(FilesMeant(context_, camera_, "IMG_0001.JPG"), ElementsAre("I:\\DCIM\\100ABCDE\\IMG_0001.JPG"));
  EXPECT_THAT(FilesMeant(context_, camera_, "img_0001.jpg"), ElementsAre("I:\\DCIM\\100ABCDE\\IMG_0001.JPG"));
  EXPECT_THAT(FilesMeant(context_, camera_, "A[1].JPG"), ElementsAre("I:\\DCIM\\100ABCDE\\a[1].jpg"));
  EXPECT_THAT(FilesMeant(context_, camera_, "mvi*"),
              ElementsAre("I:\\DCIM\\100ABCDE\\MVI_0002.MP4", "I:\\DCIM\\101ABCDE\\MVI_0003.MP4"));
  EXPECT_THAT(FilesMeant(context_, camera_, "IMG_0009.JPG"), ElementsAre("I:\\IMG_0009.JPG")) << "as it would be typed";
}

TEST_F(MeantTest, APictureFolderNeedsNoDcimBeforeIt) {
  EXPECT_THAT(FilesMeant(context_, camera_, "100ABCDE/IMG_0001.JPG"), ElementsAre("I:\\DCIM\\100ABCDE\\IMG_0001.JPG"));
  EXPECT_THAT(FilesMeant(context_, camera_, "100abcde\\img_0001.jpg"), ElementsAre("I:\\DCIM\\100ABCDE\\IMG_0001.JPG"));
  EXPECT_THAT(FilesMeant(context_, camera_, "10?ABCDE/MVI*"),
              ElementsAre("I:\\DCIM\\100ABCDE\\MVI_0002.MP4", "I:\\DCIM\\101ABCDE\\MVI_0003.MP4"));
  EXPECT_THAT(FilesMeant(context_, camera_, "100ABCDE/IMG_0009.JPG"), ElementsAre("I:\\100ABCDE\\IMG_0009.JPG"))
      << "as it would be typed";
  camera_.tree["I:"].push_back({"100ABCDE", 0, 0x10});
  camera_.tree["I:\\100ABCDE"] = {{"IMG_0001.JPG", 3, 0x20}};
  EXPECT_THAT(FilesMeant(context_, camera_, "100ABCDE/IMG_0001.JPG"), ElementsAre("I:\\100ABCDE\\IMG_0001.JPG"))
      << "what is on the drive itself comes first";
}

TEST_F(MeantTest, ANameAloneMeansFirstWhatIsOnTheDriveItself) {
  camera_.tree["I:\\DCIM\\100ABCDE"].push_back({"A.TXT", 3, 0x20});
  EXPECT_THAT(FilesMeant(context_, camera_, "a.txt"), ElementsAre("I:\\A.TXT"));
  EXPECT_THAT(FilesMeant(context_, camera_, "A.*"), ElementsAre("I:\\A.TXT"));
}

TEST_F(MeantTest, APathOfTheDriveIsNoNameAlone) {
  for (const char* typed : {"/IMG_0001.JPG", "I:/IMG_0001.JPG", "I:\\IMG_0001.JPG", "\\IMG_0001.JPG"}) {
    EXPECT_THAT(FilesMeant(context_, camera_, typed), ElementsAre("I:\\IMG_0001.JPG")) << typed;
  }
  for (const char* typed : {"/100ABCDE/IMG_0001.JPG", "\\100ABCDE\\IMG_0001.JPG"}) {
    EXPECT_THAT(FilesMeant(context_, camera_, typed), ElementsAre("I:\\100ABCDE\\IMG_0001.JPG")) << typed;
  }
}

TEST_F(MeantTest, ANameInTwoFoldersMeansNeitherAndBothAreSaid) {
  camera_.tree["I:\\DCIM\\101ABCDE"].push_back({"img_0001.jpg", 3, 0x20});
  try {
    AllFilesMeant(context_, camera_, {"A.TXT", "IMG_0001.JPG"});
    FAIL() << "it chose one";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Code(), ExitCode::kUsage);
    EXPECT_STREQ(
        failure.what(),
        "IMG_0001.JPG may mean I:/DCIM/100ABCDE/IMG_0001.JPG or I:/DCIM/101ABCDE/img_0001.jpg; name the folder "
        "too.");
  }
}

TEST_F(MeantTest, AnotherCaseOfLettersMeansWhatIsListedAndANoteSaysSo) {
  EXPECT_THAT(Find("I:\\dcim"), ElementsAre("I:\\DCIM"));
  EXPECT_EQ(Said(), "kelva: There is no I:/dcim; there is I:/DCIM.\n");
  EXPECT_THAT(Find("I:\\dcim\\100abcde\\img_0001.jpg"), ElementsAre("I:\\DCIM\\100ABCDE\\IMG_0001.JPG"));
}

TEST_F(MeantTest, WhereTwoNamesDifferInCaseAloneTheOneTypedIsMeant) {
  EXPECT_THAT(Find("I:\\DCIM\\101ABCDE\\img_0004.jpg"), ElementsAre("I:\\DCIM\\101ABCDE\\img_0004.jpg"));
  EXPECT_THAT(Find("I:\\DCIM\\101ABCDE\\IMG_0004.JPG"), ElementsAre("I:\\DCIM\\101ABCDE\\IMG_0004.JPG"));
}

TEST_F(MeantTest, WhereSeveralNamesDifferInCaseAloneNoneIsGuessed) {
  const auto said = [&](const auto& find) {
    try {
      find();
      return std::string("found");
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.Code(), ExitCode::kUsage);
      return std::string(failure.what());
    }
  };
  const std::string path = "I:\\DCIM\\101ABCDE\\Img_0004.jpg";
  const std::string sentence =
      "There is no I:/DCIM/101ABCDE/Img_0004.jpg; there are I:/DCIM/101ABCDE/img_0004.jpg and "
      "I:/DCIM/101ABCDE/IMG_0004.JPG; name one of them.";
  EXPECT_EQ(said([&] { Find(path); }), sentence);
  EXPECT_EQ(said([&] { InListedFolder(context_, camera_, path); }), sentence);
  EXPECT_EQ(InListedFolder(context_, camera_, "I:\\DCIM\\101ABCDE\\IMG_0004.JPG"), "I:\\DCIM\\101ABCDE\\IMG_0004.JPG");
}

TEST_F(MeantTest, APatternMeansAllThatMatchInFoldersAndNames) {
  EXPECT_THAT(Find("I:\\DCIM\\*\\*.mp4"),
              ElementsAre("I:\\DCIM\\100ABCDE\\MVI_0002.MP4", "I:\\DCIM\\101ABCDE\\MVI_0003.MP4"));
  EXPECT_THAT(Find("I:\\DCIM\\100ABCDE\\a[1].jpg"), ElementsAre("I:\\DCIM\\100ABCDE\\a[1].jpg"))
      << "a name that looks like a pattern";
}

TEST_F(MeantTest, WhatIsNowhereIsLeftAsItIs) {
  EXPECT_THAT(Find("I:\\DCIM\\*.RAW"), ElementsAre("I:\\DCIM\\*.RAW"));
  EXPECT_THAT(Find("I:\\NOPE\\A.TXT"), ElementsAre("I:\\NOPE\\A.TXT"));
  EXPECT_EQ(Said(), "");
}

TEST_F(MeantTest, FilesThatTwoPatternsMatchAreMeantOnce) {
  EXPECT_THAT(AllFilesMeant(context_, camera_, {"I:\\DCIM\\*\\MVI*", "I:\\DCIM\\100ABCDE\\*.MP4", "I:\\A.TXT"}),
              ElementsAre("I:\\DCIM\\100ABCDE\\MVI_0002.MP4", "I:\\DCIM\\101ABCDE\\MVI_0003.MP4", "I:\\A.TXT"));
}

TEST_F(MeantTest, AFolderIsListedOnceHoweverManyOfItsFilesAreNamed) {
  EXPECT_EQ(
      AllFilesMeant(context_, camera_, {"I:\\DCIM\\101ABCDE\\MVI_0003.MP4", "I:\\DCIM\\101ABCDE\\IMG_0004.JPG"}).size(),
      2U);
  EXPECT_EQ(camera_.listings, 1);
}

TEST_F(MeantTest, ThePathOfOneThingMayBeAPatternWithOneMatch) {
  EXPECT_EQ(MeantOne(context_, camera_, "I:\\DCIM\\100*"), "I:\\DCIM\\100ABCDE");
  try {
    MeantOne(context_, camera_, "I:\\DCIM\\*");
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Code(), ExitCode::kUsage);
    EXPECT_STREQ(failure.what(), "'I:/DCIM/*' matches 2 names on the camera; name one of them.");
  }
}

TEST_F(MeantTest, ATargetKeepsANewNameInAFolderAsListed) {
  EXPECT_EQ(InListedFolder(context_, camera_, "I:\\dcim\\NEW.TXT"), "I:\\DCIM\\NEW.TXT");
  EXPECT_EQ(InListedFolder(context_, camera_, "I:\\a.txt"), "I:\\A.TXT");
  EXPECT_EQ(InListedFolder(context_, camera_, "I:"), "I:");
}

TEST_F(MeantTest, ACameraThatHasGoneEndsTheSearch) {
  class GoneCamera : public FakeCamera {
    std::vector<CameraDirent> ReadDir(const char*) override {
      throw CameraTransferError(
          "Transfer error\nCDB=[c2 00 03 00 00 00 00 00 00 00 00 00 00 00 00 00]\nret=0xe00002c0 "
          "result.status=0x00000000");
    }
  } gone;
  EXPECT_THROW(Meant(context_, gone, "I:\\A.TXT"), CameraTransferError);
}

}  // namespace
}  // namespace apps
