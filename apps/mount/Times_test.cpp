#include "apps/mount/Times.h"

#include <gtest/gtest.h>

#include <cstring>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/camera/testing/MadePicture.h"
#include "apps/import/TakenTime.h"

namespace apps {
namespace {

DcfObj Picture(int number, const std::string& taken) {
  DcfObj picture = MadePicture(number);
  std::memcpy(picture.block8, taken.data(), taken.size());
  return picture;
}

TEST(TimesTest, AllFilesOfAPictureHaveItsTimeAndOthersNone) {
  FakeCamera camera;
  camera.open = true;
  camera.catalogue = {Picture(2, "not a time"), Picture(1, "2026-03-14 15:09:26")};
  ShownFolder folder({{"IMG_0001.JPG", 1, 0}, {"img_0001.raw", 1, 0}, {"IMG_0002.JPG", 1, 0}, {"NOTE.TXT", 1, 0}});
  Times times;
  EXPECT_TRUE(times.Fill(camera, "I:\\DCIM\\100ABCDE", folder));
  const std::time_t taken = MomentHere(*ParseTaken("2026-03-14 15:09:26"));
  EXPECT_EQ(folder.Find("IMG_0001.JPG")->changed, taken);
  EXPECT_EQ(folder.Find("img_0001.raw")->changed, taken);
  EXPECT_EQ(folder.Find("IMG_0002.JPG")->changed, 0);
  EXPECT_EQ(folder.Find("NOTE.TXT")->changed, 0);
  // Not again at once for files that the catalogue does not have.
  EXPECT_FALSE(times.Fill(camera, "I:\\DCIM\\100ABCDE", folder));
}

TEST(TimesTest, FoldersOutsideOfDcimAskForNothing) {
  FakeCamera camera;
  ShownFolder folder({{"IMG_0001.JPG", 1, 0}});
  Times times;
  EXPECT_FALSE(times.Fill(camera, "I:\\OTHER", folder));
  EXPECT_FALSE(times.Fill(camera, "I:", folder));
  EXPECT_EQ(folder.Find("IMG_0001.JPG")->changed, 0);
}

}  // namespace
}  // namespace apps
