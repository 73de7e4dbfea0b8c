#include "apps/desktop/worker/PictureEvents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>

#include "apps/camera/Picture.h"
#include "apps/import/testing/SyncTest.h"

namespace apps {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

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

class TargetTest : public SyncFolderTest {
 protected:
  TargetTest() {
    pictures_[0].hasRaw = 1;
    manifest_.Record({{.key = KeyOf(pictures_[0], 1, "K1"), .path = "one", .sha1 = "1", .size = 3}});
  }
  std::string Members(const Target& target, const OnCamera& camera, const std::string& serial = "K1") const {
    return TargetMembers(target, camera, serial).Text();
  }

  std::vector<DcfObj> pictures_ = {Picture(2), Picture(1)};
  const std::vector<FileSizes> sizes_ = {{{10, 20, {}, {}}}, {{30, {}, {}, {}}}};
};

TEST_F(TargetTest, MarksTheTypesThatAreNew) {
  EXPECT_THAT(Members({path_, "", ""}, {pictures_, sizes_}),
              HasSubstr(R"("new":"21","new_pictures":2,"new_files":2,"new_bytes":50,"unlisted":0)"));
  EXPECT_THAT(Members({path_, "", "jpg"}, {pictures_, sizes_}),
              HasSubstr(R"("new":"21","new_pictures":1,"new_files":1,"new_bytes":30)"));
  EXPECT_THAT(Members({path_, "", ""}, {pictures_, sizes_}, "K2"), HasSubstr(R"("new":"31")"));
}

TEST_F(TargetTest, NamesNoBytesBeforeTheSizesAreKnown) {
  EXPECT_THAT(Members({path_, "", ""}, {pictures_}), Not(HasSubstr("bytes")));
}

TEST_F(TargetTest, CountsOtherFilesThatAreNew) {
  const OtherFiles others{{{"I:\\DCIM\\100ABCDE\\MVI_0001.MP4", 500}, {"I:\\MISC\\AUTPRINT.MRK", 7}}};
  manifest_.Record({{.key = others.files[1].Key("K1"), .path = "b", .sha1 = "2", .size = 7}});
  EXPECT_THAT(Members({path_, "", ""}, {pictures_, sizes_, others}),
              HasSubstr(R"("new_others":1,"new_others_bytes":500)"));
}

TEST_F(TargetTest, InAFolderThatIsNotThereAllIsNewAndNoneIsMade) {
  EXPECT_THAT(Members({path_ + "/later", "", ""}, {pictures_, sizes_}),
              testing::AllOf(HasSubstr(R"("new":"31")"), HasSubstr(R"("free":)")));
  struct stat status {};
  EXPECT_NE(::lstat((path_ + "/later").c_str(), &status), 0);
}

TEST_F(TargetTest, SaysWhyAFolderOrANamingCannotBeUsed) {
  EXPECT_THAT(Members({path_, "{frob}", ""}, {pictures_, sizes_}), HasSubstr(R"("error":")"));
  EXPECT_THAT(Members({path_, "", "gif"}, {pictures_, sizes_}), HasSubstr(R"("error":"\"gif\" is not a type)"));
  EXPECT_THAT(Members({"/dev/null/x", "", ""}, {pictures_, sizes_}), HasSubstr(R"("error":")"));
}

}  // namespace
}  // namespace apps
