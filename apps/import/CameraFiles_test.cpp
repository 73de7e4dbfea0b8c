#include "apps/import/CameraFiles.h"

#include <gtest/gtest.h>

#include "apps/import/testing/SyncFixture.h"

namespace apps {
namespace {

class CameraFilesTest : public SyncTest {
 protected:
  /// What is wrong with the first picture's file; empty when it can be opened.
  std::string WhyNot(const std::string& key = "") {
    const SyncPlan plan = Plan({Picture(1, key)});
    try {
      EXPECT_EQ(CameraFiles(Shared(camera_)).Open(plan.items[0]).Size(), camera_.files["IMG_0001.JPG"].size());
    } catch (const CameraError& error) {
      return error.what();
    }
    return "";
  }

  static constexpr char kKey[] = "a9993e364706816aba3e25717850c26c9cd0d89d";
};

TEST_F(CameraFilesTest, AFileOfItsListedSizeIsSelectedOnce) {
  EXPECT_EQ(WhyNot(), "");
  EXPECT_EQ(camera_.reads, 1);
}

TEST_F(CameraFilesTest, AnotherSizeThanTheListedOneIsAnErrorWithoutAKey) {
  camera_.lie = 1;
  EXPECT_EQ(WhyNot(), "Camera error: the folder gives it 4 bytes, and the camera announces 3 bytes");
  EXPECT_EQ(WhyNot(kKey), "");
}

TEST_F(CameraFilesTest, NotEvenAKeyMakesAFileThatIsFarLongerThanListed) {
  camera_.files["IMG_0001.JPG"] = std::string(300'000, 'x');
  camera_.lie = -299'990;
  EXPECT_EQ(WhyNot(kKey), "Camera error: the folder gives it 10 bytes, and the camera announces 300000 bytes");
}

TEST_F(CameraFilesTest, AnEmptyFileThatNoFolderListsIsMissing) {
  camera_.folder = "elsewhere";
  EXPECT_EQ(WhyNot(), "");
  camera_.files["IMG_0001.JPG"] = "";
  EXPECT_EQ(WhyNot(), "Camera error: the catalogue names it, but it is not in its folder");
}

TEST_F(CameraFilesTest, AFileUnlikeItsKeyHasToHaveItsListedSize) {
  const SyncPlan plan = Plan({Picture(1, kKey)});
  CameraFiles files(Shared(camera_));
  EXPECT_NO_THROW(files.CheckUnlikeKey(plan.items[0], 3));
  EXPECT_THROW(files.CheckUnlikeKey(plan.items[0], 4), CameraError);
}

}  // namespace
}  // namespace apps
