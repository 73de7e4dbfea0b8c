#include "apps/camera/CameraWords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"

namespace apps {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(CameraWordsTest, PathsStandBehindWhatWasTyped) {
  FakeCamera camera;
  camera.files = {{"A.TXT", "a"}, {"$(b)", ""}};
  camera.folders = {"DCIM"};
  EXPECT_THAT(PathsBeginning(camera, "D"), ElementsAre("$(b)", "A.TXT", "DCIM/"));
  EXPECT_THAT(PathsBeginning(camera, "/A"), ElementsAre("/$(b)", "/A.TXT", "/DCIM/"));
  EXPECT_THAT(PathsBeginning(camera, "I:/"), ElementsAre("I:/$(b)", "I:/A.TXT", "I:/DCIM/"));
  EXPECT_THAT(PathsBeginning(camera, "I:"), ElementsAre("I:/$(b)", "I:/A.TXT", "I:/DCIM/")) << "as behind its slash";
  EXPECT_THAT(PathsBeginning(camera, "MISC/"), IsEmpty());
}

TEST(CameraWordsTest, FoldersOfPicturesAreThoseBelowDcim) {
  FakeCamera camera;
  camera.folder = "I:\\DCIM";
  camera.files = {{"A.TXT", "a"}};
  camera.folders = {".", "100ABCDE", "$(b)", "101/", ".."};
  EXPECT_THAT(PictureFolders(camera), ElementsAre("100ABCDE", "$(b)"));
  camera.folder = "I:\\MISC";
  EXPECT_THAT(PictureFolders(camera), IsEmpty());
}

/// A camera with three pictures, two of them with one name in two folders.
class ThreePictures final : public FakeCamera {
 public:
  ThreePictures() { open = true; }
  bool Transfer(const _VscCdb& cdb, int, int& size, char* buffer, bool) override {
    if (static_cast<unsigned char>(cdb.bytes[0]) != 0xC4) return true;
    // Version 1, records of 24 bytes, one field: the name (0) at 0.
    std::string answer = {1, 0, 0, 0, 24, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    for (const auto& [directory, number] : {std::pair<char, char>{100, 1}, {101, 1}, {101, 2}}) {
      std::string record(24, '\0');
      record.replace(0, 5, "ABCDE");
      record.replace(8, 4, "IMG_");
      record[16] = directory;
      record[20] = number;
      answer += record;
    }
    answer.copy(buffer, answer.size());
    size = static_cast<int>(answer.size());
    return true;
  }
};

TEST(CameraWordsTest, PicturesAreOfferedByNameWhereThatIsEnough) {
  ThreePictures camera;
  EXPECT_THAT(PicturesBeginning(camera, "I"), ElementsAre("100ABCDE/", "101ABCDE/", "IMG_0002"));
  EXPECT_THAT(PicturesBeginning(camera, "101ABCDE/"),
              ElementsAre("100ABCDE/IMG_0001", "101ABCDE/IMG_0001", "101ABCDE/IMG_0002"));
}

}  // namespace
}  // namespace apps
