#include "apps/camera/FileSizes.h"

#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/camera/testing/MadePicture.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

TEST(FileSizesTest, SizesComeFromTheFoldersListing) {
  FakeCamera camera;
  camera.folder = "I:\\DCIM\\100ABCDE";
  camera.files = {{"img_0001.jpg", "four"}, {"IMG_0002.JPG", "sixsix"}, {"IMG_0001.RAW", "x"}};
  camera.folders = {"IMG_0003.JPG"};
  const Stop stop;
  const auto sizes = ReadFileSizes(stop, camera, {MadePicture(2), MadePicture(1), MadePicture(3)});
  ASSERT_EQ(sizes.size(), 3U);
  EXPECT_EQ(sizes[0][0], 6U);
  EXPECT_EQ(sizes[1][0], 4U);
  EXPECT_EQ(sizes[1][1], std::nullopt) << "the catalogue has no such file";
  EXPECT_EQ(sizes[2][0], std::nullopt) << "a folder is no picture";
}

class UnlistableCamera : public FakeCamera {
 public:
  explicit UnlistableCamera(const char* message) : message_(message) {}
  std::vector<CameraDirent> ReadDir(const char*) override { throw CameraError(message_); }

 private:
  const char* message_;
};

TEST(FileSizesTest, AFolderThatCannotBeListedLeavesItsSizesUnknown) {
  UnlistableCamera camera("ReadDir() truncated.");
  const Stop stop;
  EXPECT_EQ(ReadFileSizes(stop, camera, {MadePicture(1)})[0][0], std::nullopt);
}

TEST(FileSizesTest, ARequestToStopIsNoticedBetweenFolders) {
  FakeCamera camera;
  Stop stop;
  stop.Request();
  EXPECT_THROW(ReadFileSizes(stop, camera, {MadePicture(1)}), Stopped);
}

}  // namespace
}  // namespace apps
