#include "apps/camera/NewPictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "apps/camera/Picture.h"
#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/Failure.h"

namespace apps {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// A camera whose catalogue has the names of pictures, and one field of the camera's own.
class NamingCamera final : public FakeCamera {
 public:
  NamingCamera() { open = true; }
  bool IsReady() override { return true; }
  bool Transfer(const _VscCdb& cdb, int, int& size, char* buffer, bool) override {
    if (static_cast<unsigned char>(cdb.bytes[0]) != 0xC4) return !fails;
    if (onCatalogue) onCatalogue();
    // Version 1, records of 28 bytes, two fields: the name (0) at 0, value5 (5) at 24.
    std::string answer = {1, 0, 0, 0, 28, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 0, 24, 0, 0, 0};
    for (const auto& [number, value] : pictures) {
      std::string record(28, '\0');
      record.replace(0, 5, "ABCDE");
      record.replace(8, 4, "IMG_");
      record[16] = 100;
      record[20] = number;
      record[24] = value;
      answer += record;
    }
    answer.copy(buffer, answer.size());
    size = static_cast<int>(answer.size());
    return true;
  }

  std::vector<std::pair<char, char>> pictures;  ///< number and value5 of each
  bool fails = false;
  std::function<void()> onCatalogue;  ///< before each answer
};

std::vector<std::string> Names(const std::vector<DcfObj>& pictures) {
  std::vector<std::string> names;
  for (const DcfObj& picture : pictures) names.push_back(PictureFolder(picture) + "/" + PictureStem(picture));
  return names;
}

TEST(NewPicturesTest, OnlyPicturesThatAppearAreNew) {
  NamingCamera camera;
  camera.pictures = {{1, 0}};
  NewPictures pictures;
  EXPECT_THAT(pictures.Look(camera), IsEmpty());
  camera.pictures.push_back({2, 0});
  EXPECT_THAT(Names(pictures.Look(camera)), ElementsAre("100ABCDE/IMG_0002"));
  EXPECT_THAT(pictures.Look(camera), IsEmpty());
}

TEST(NewPicturesTest, ADifferentPictureOfAnOldNameIsNew) {
  NamingCamera camera;
  camera.pictures = {{1, 0}};
  NewPictures pictures;
  pictures.Look(camera);
  camera.pictures = {{1, 7}};
  EXPECT_THAT(Names(pictures.Look(camera)), ElementsAre("100ABCDE/IMG_0001"));
}

TEST(NewPicturesTest, ThePicturesOfAnEmptyCardAreNew) {
  NamingCamera camera;
  NewPictures pictures;
  EXPECT_THAT(pictures.Look(camera), IsEmpty());
  camera.pictures = {{1, 0}};
  EXPECT_THAT(Names(pictures.Look(camera)), ElementsAre("100ABCDE/IMG_0001"));
}

TEST(NewPicturesTest, AReadThatFailsMakesNoPictureNew) {
  NamingCamera camera;
  camera.pictures = {{1, 0}};
  NewPictures pictures;
  pictures.Look(camera);
  camera.fails = true;
  EXPECT_THAT(pictures.Look(camera), IsEmpty());
  camera.fails = false;
  camera.pictures.push_back({2, 0});
  EXPECT_THAT(Names(pictures.Look(camera)), ElementsAre("100ABCDE/IMG_0002"));
}

TEST(NewPicturesTest, AwaitedPicturesAreGivenWhenTheirEntriesRest) {
  NamingCamera camera;
  camera.pictures = {{1, 0}};
  NewPictures pictures;
  pictures.Look(camera);
  int looks = 0;
  camera.onCatalogue = [&] {
    if (++looks == 3) camera.pictures.push_back({2, 0});
    if (looks == 4) camera.pictures.back().second = 5;
  };
  EXPECT_THAT(Names(AwaitPictures(
                  pictures, camera, Stop(), [] {}, 10s)),
              ElementsAre("100ABCDE/IMG_0002"));
  EXPECT_EQ(looks, 5);
}

TEST(NewPicturesTest, NothingIsAwaitedForEver) {
  NamingCamera camera;
  NewPictures pictures;
  pictures.Look(camera);
  try {
    AwaitPictures(
        pictures, camera, Stop(), [] {}, 5ms);
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Code(), ExitCode::kTimedOut);
  }
  Stop stop;
  stop.Request();
  EXPECT_THROW(AwaitPictures(
                   pictures, camera, stop, [] {}, 10s),
               Stopped);
}

}  // namespace
}  // namespace apps
