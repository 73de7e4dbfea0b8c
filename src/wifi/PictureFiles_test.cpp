#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

// The files of one picture: their names, reading them, deleting them all.

namespace {

using namespace wifi_testing;

DcfObj Picture() {
  DcfObj picture{};
  std::strcpy(picture.directorySuffix, "ABCDE");
  std::strcpy(picture.filePrefix, "IMG_");
  picture.directoryNumber = 100;
  picture.fileNumber = 7;
  picture.hasJpg = 1;
  return picture;
}

TEST(DcfFilename, IsPrefixFourDigitsAndExtension) {
  const DcfObj picture = Picture();
  EXPECT_EQ(Camera::DcfFilename(picture, 1), "IMG_0007.JPG");
  EXPECT_EQ(Camera::DcfFilename(picture, 2), "IMG_0007.RAW");
  EXPECT_EQ(Camera::DcfFilename(picture, 3), "IMG_0007.TXT");
  EXPECT_EQ(Camera::DcfFilename(picture, 4), "IMG_0007.128");
}

TEST(DcfFilename, KeepsAllDigitsOfALongNumber) {
  DcfObj picture = Picture();
  picture.fileNumber = 12345;
  EXPECT_EQ(Camera::DcfFilename(picture, 1), "IMG_12345.JPG");
  picture.fileNumber = 12;
  EXPECT_EQ(Camera::DcfFilename(picture, 1), "IMG_0012.JPG");
}

TEST(DcfFilename, DoesNotAskWhetherThePictureHasTheFile) {
  DcfObj picture = Picture();
  picture.hasJpg = 0;
  EXPECT_EQ(Camera::DcfFilename(picture, 1), "IMG_0007.JPG");
}

TEST(DcfFilename, OfAnUnknownTypeIsAnError) {
  for (const int type : {0, 5, -1, INT_MAX}) {
    EXPECT_EQ(Thrown([&] { Camera::DcfFilename(Picture(), type); }), "CameraError: Camera error: Unknown filetype.");
    const ExceptionsOff off;
    EXPECT_EQ(Camera::DcfFilename(Picture(), type), "IMG_0007.INVALID");
  }
}

TEST(DcfFilename, APrefixWithoutNulEndsAtItsWidth) {
  DcfObj picture = Picture();
  std::memcpy(picture.filePrefix, "ABCDEFGH", 8);
  EXPECT_EQ(Camera::DcfFilename(picture, 1), "ABCDEFGH0007.JPG");
}

TEST(ReadPictureFile, ReadsThePathOfTheNamingRule) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x01}).Sends(Text("I:\\DCIM\\100ABCDE\\IMG_0007.JPG"));
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({3, 0, 0, 0});
  camera.Expect({0xC4, 0x00, 0x01}).Asks(65536).Answers("abc");
  EXPECT_EQ(ToString(camera.ReadFile(Picture(), 1, nullptr, nullptr, true)), "abc");
  EXPECT_EQ(camera.calls, (Calls{"IsOpen", "ClearCancel true", "Transfer true", "Transfer true", "Transfer true"}));
}

// Sees the call that reaches the operation by path.
class PathCamera : public ScriptedCamera {
 public:
  std::vector<char> ReadFile(const char* itsPath, void (*itsProgress)(void*, float), void* itsContext,
                             bool itsFlag) override {
    path = itsPath;
    progress = itsProgress;
    context = itsContext;
    flag = itsFlag;
    return {'o', 'k'};
  }
  using Camera::ReadFile;

  std::string path;
  void (*progress)(void*, float) = nullptr;
  void* context = nullptr;
  bool flag = true;
};

TEST(ReadPictureFile, GoesThroughTheOperationByPathAndPassesItsArgumentsUnchanged) {
  PathCamera camera;
  Progress progress;
  EXPECT_EQ(ToString(camera.ReadFile(Picture(), 1, Progress::Report, &progress, false)), "ok");
  EXPECT_EQ(camera.path, "I:\\DCIM\\100ABCDE\\IMG_0007.JPG");
  EXPECT_EQ(camera.progress, &Progress::Report);
  EXPECT_EQ(camera.context, &progress);
  EXPECT_FALSE(camera.flag);
  EXPECT_EQ(camera.calls, Calls{});
}

TEST(ReadPictureFile, EachTypeHasItsExtension) {
  DcfObj picture = Picture();
  picture.hasRaw = picture.hasTxt = picture.has128 = 0x80000000u;
  const char* const extensions[] = {"JPG", "RAW", "TXT", "128"};
  for (int type = 1; type <= 4; ++type) {
    PathCamera camera;
    camera.ReadFile(picture, type, nullptr, nullptr, true);
    EXPECT_EQ(camera.path, std::string("I:\\DCIM\\100ABCDE\\IMG_0007.") + extensions[type - 1]);
  }
}

TEST(ReadPictureFile, PadsTheNumbersToThreeAndFourDigits) {
  DcfObj picture = Picture();
  picture.directoryNumber = 1;
  picture.fileNumber = 12345;
  PathCamera camera;
  camera.ReadFile(picture, 1, nullptr, nullptr, true);
  EXPECT_EQ(camera.path, "I:\\DCIM\\001ABCDE\\IMG_12345.JPG");
}

TEST(ReadPictureFile, TextsWithoutNulEndAtTheirWidth) {
  DcfObj picture = Picture();
  std::memcpy(picture.directorySuffix, "SUFFIXXX", 8);
  std::memcpy(picture.filePrefix, "PREFIXXX", 8);
  PathCamera camera;
  camera.ReadFile(picture, 1, nullptr, nullptr, true);
  EXPECT_EQ(camera.path, "I:\\DCIM\\100SUFFIXXX\\PREFIXXX0007.JPG");
}

// 49 characters in all: the path is made in 48 bytes, its NUL included.
TEST(ReadPictureFile, APathLongerThanFortySevenCharactersIsCut) {
  DcfObj picture = Picture();
  std::memcpy(picture.directorySuffix, "SUFFIXXX", 8);
  std::memcpy(picture.filePrefix, "PREFIXXX", 8);
  picture.directoryNumber = INT_MAX;
  picture.fileNumber = INT_MAX;
  PathCamera camera;
  camera.ReadFile(picture, 1, nullptr, nullptr, true);
  EXPECT_EQ(camera.path, "I:\\DCIM\\2147483647SUFFIXXX\\PREFIXXX2147483647.J");
}

TEST(ReadPictureFile, OfATypeThatThePictureLacksSendsNothing) {
  ScriptedCamera camera;
  EXPECT_EQ(Thrown([&] { camera.ReadFile(Picture(), 2, nullptr, nullptr, true); }),
            "CameraError: Camera error: ReadFile() file type 2 does not exist.");
  EXPECT_EQ(Thrown([&] { camera.ReadFile(Picture(), 3, nullptr, nullptr, true); }),
            "CameraError: Camera error: ReadFile() file type 3 does not exist.");
  EXPECT_EQ(Thrown([&] { camera.ReadFile(Picture(), 4, nullptr, nullptr, true); }),
            "CameraError: Camera error: ReadFile() file type 4 does not exist.");
  EXPECT_EQ(camera.calls, Calls{});
}

TEST(ReadPictureFile, OfAnUnknownTypeSendsNothing) {
  ScriptedCamera camera;
  EXPECT_EQ(Thrown([&] { camera.ReadFile(Picture(), 0, nullptr, nullptr, true); }),
            "CameraError: Camera error: ReadFile() file type 0 does not exist.");
  EXPECT_EQ(Thrown([&] { camera.ReadFile(Picture(), -1, nullptr, nullptr, true); }),
            "CameraError: Camera error: ReadFile() file type -1 does not exist.");
  EXPECT_EQ(Thrown([&] { camera.ReadFile(Picture(), 5, nullptr, nullptr, true); }),
            "CameraError: Camera error: ReadFile() file type 5 does not exist.");
  {
    const GroupedDigits grouped;
    EXPECT_EQ(Thrown([&] { camera.ReadFile(Picture(), 123456, nullptr, nullptr, true); }),
              "CameraError: Camera error: ReadFile() file type 123456 does not exist.");
  }
  const ExceptionsOff off;
  EXPECT_TRUE(camera.ReadFile(Picture(), 5, nullptr, nullptr, true).empty());
  EXPECT_TRUE(camera.ReadFile(Picture(), 2, nullptr, nullptr, true).empty());
  EXPECT_EQ(camera.calls, Calls{});
}

TEST(DeleteDcfObject, SendsTheIdentityAsTheCatalogueDeliveredIt) {
  DcfObj picture = Picture();
  std::memcpy(picture.directorySuffix, "A\0rest!!", 8);
  picture.fileNumber = -2;
  ScriptedCamera camera;
  camera.open = false;
  const std::string identity = Bytes(
      {'A', 0, 'r', 'e', 's', 't', '!', '!', 'I', 'M', 'G', '_', 0, 0, 0, 0, 100, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF});
  camera.Expect({0xC0, 0x00, 0x05}).Sends(identity);
  EXPECT_TRUE(camera.DeleteDcfObject(picture));
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true"}));
  camera.Expect({0xC0, 0x00, 0x05}).Sends(identity).Fails();
  EXPECT_FALSE(camera.DeleteDcfObject(picture));
  camera.Expect({0xC0, 0x00, 0x05}).Sends(identity).Throws("gone");
  EXPECT_EQ(Thrown([&] { camera.DeleteDcfObject(picture); }), "CameraTransferError: Camera error: gone");
}

}  // namespace
