#include "vcam/program/StorageNote.h"

#include <fstream>

#include <gtest/gtest.h>

#include "base/testing/ScratchFolder.h"

namespace vcam::program {
namespace {

class StorageNoteTest : public testing::Test {
 protected:
  void Put(const std::string& file) {
    const std::filesystem::path path = folder_.Path() / file;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << "content";
  }
  std::string Note() { return StorageNote(folder_.Path()); }

 private:
  base::ScratchFolder folder_;
};

TEST_F(StorageNoteTest, NothingIsSaidOfAnEmptyFolder) {
  EXPECT_EQ(Note(), "");
}

TEST_F(StorageNoteTest, NothingIsSaidWhereNoJpegLies) {
  Put("notes.txt");
  Put("DCIM/100ABCDE/readme.md");
  EXPECT_EQ(Note(), "");
}

TEST_F(StorageNoteTest, OnePictureInACamerasPlaceIsEnough) {
  Put("elsewhere.jpg");
  Put("DCIM/999/0001.RAW");
  EXPECT_EQ(Note(), "");
}

TEST_F(StorageNoteTest, JpegFilesElsewhereAreCounted) {
  Put("a.JPG");
  Put("more/b.jpeg");
  Put("more/c.png");
  EXPECT_EQ(
      Note(),
      "The camera has no picture: 2 JPEG files lie elsewhere in the folder, and a camera finds only those in places "
      "like DCIM/100ABCDE/IMG_0001.JPG, capital letters included.");
}

TEST_F(StorageNoteTest, NamesInSmallLettersAreNoPicturesOfACamera) {
  Put("DCIM/100ABCDE/img_0001.jpg");
  EXPECT_NE(Note().find("1 JPEG file lies elsewhere"), std::string::npos);
}

TEST_F(StorageNoteTest, AFolderThatIsMissingIsAnError) {
  EXPECT_THROW(StorageNote("/nonexistent/folder"), std::runtime_error);
}

}  // namespace
}  // namespace vcam::program
