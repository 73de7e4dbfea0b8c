#include "apps/camera/PictureStart.h"

#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/camera/testing/MadePicture.h"
#include "apps/commandline/testing/SilentContext.h"
#include "src/wifi/FileReader.h"

namespace apps {
namespace {

TEST(PictureStartTest, ASmallFileComesWhole) {
  FakeCamera camera;
  camera.open = true;
  for (const std::size_t size : {std::size_t{1}, std::size_t{65'535}, PictureStart::kMost}) {
    camera.files["IMG_0001.JPG"] = std::string(size, 'x');
    const PictureStart start = ReadStart(Shared(camera), MadePicture(1));
    EXPECT_EQ(start.bytes.size(), size);
    EXPECT_TRUE(start.IsWhole());
  }
}

TEST(PictureStartTest, OfALargeFileTheStartComes) {
  FakeCamera camera;
  camera.open = true;
  camera.files["IMG_0001.JPG"] = std::string(65'536, 'a') + "b";
  const PictureStart start = ReadStart(Shared(camera), MadePicture(1));
  EXPECT_EQ(std::string(start.bytes.begin(), start.bytes.end()), std::string(65'536, 'a'));
  EXPECT_EQ(start.size, 65'537U);
  EXPECT_FALSE(start.IsWhole());
}

TEST(PictureStartTest, APictureWithoutAJpegIsAnError) {
  FakeCamera camera;
  camera.open = true;
  DcfObj raw = MadePicture(1);
  raw.hasJpg = 0;
  raw.hasRaw = 1;
  EXPECT_THROW(ReadStart(Shared(camera), raw), CameraError);
}

TEST(PictureStartTest, AWholeFileComesUnlessItIsNoLongerWanted) {
  SilentContext silent;
  FakeCamera camera;
  camera.open = true;
  camera.files["IMG_0001.JPG"] = std::string(300'000, 'a') + "b";
  kelva::FileReader reader(Shared(camera), MadePicture(1), 1);
  int asked = 0;
  EXPECT_TRUE(ReadWhole(silent.context_, reader, [&] { return ++asked == 1; }).empty());
  EXPECT_EQ(asked, 2);
  reader = kelva::FileReader(Shared(camera), MadePicture(1), 1);
  const std::vector<char> whole = ReadWhole(silent.context_, reader);
  EXPECT_EQ(std::string(whole.begin(), whole.end()), camera.files["IMG_0001.JPG"]);
}

}  // namespace
}  // namespace apps
