#include "apps/desktop/worker/PictureEvents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "apps/camera/Picture.h"

namespace apps {
namespace {

using testing::ElementsAre;

DcfObj Picture(int folder, int number, const char* prefix = "IMG_") {
  DcfObj picture{};
  std::memcpy(picture.directorySuffix, "ABCDE", 5);
  std::memcpy(picture.filePrefix, prefix, std::strlen(prefix));
  picture.directoryNumber = folder;
  picture.fileNumber = number;
  picture.hasJpg = 1;
  return picture;
}

TEST(PictureEventsTest, HighestFolderAndNumberComeFirst) {
  std::vector<DcfObj> pictures = {Picture(100, 9999), Picture(101, 2), Picture(101, 11), Picture(101, 11, "IMG@")};
  SortHighestFirst(pictures);
  std::vector<std::string> names;
  for (const DcfObj& picture : pictures) names.push_back(PictureFolder(picture) + PictureStem(picture));
  EXPECT_THAT(names, ElementsAre("101ABCDEIMG_0011", "101ABCDEIMG@0011", "101ABCDEIMG_0002", "100ABCDEIMG_9999"));
}

TEST(PictureEventsTest, AnyNameCanBeHandedBack) {
  DcfObj picture = Picture(100, 1, "A\xFF_%");
  picture.hasRaw = 1;
  picture.has128 = 1;
  EXPECT_EQ(PicturesMembers(7, std::vector<DcfObj>{picture}).Text(),
            R"({"from":7,"items":[["100ABCDE","A%FF_%250001",11,""]]})");
}

TEST(PictureEventsTest, SizesStandInTheOrderOfTypes) {
  std::vector<DcfObj> pictures = {Picture(100, 1), Picture(100, 2)};
  pictures[0].hasRaw = 1;
  const std::vector<FileSizes> sizes = {{{10, 20, {}, {}}}, {}};
  EXPECT_EQ(SizesMembers(3, pictures, sizes).Text(), R"({"from":3,"items":[[10,20],[null]]})");
}

}  // namespace
}  // namespace apps
