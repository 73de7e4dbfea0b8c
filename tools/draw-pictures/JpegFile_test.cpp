#include "tools/draw-pictures/JpegFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace {

namespace fs = std::filesystem;

/// A folder that lives as long as the test.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string name = (fs::temp_directory_path() / "draw-pictures.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no scratch folder");
    path_ = name;
  }
  ~ScratchFolder() { fs::remove_all(path_); }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  const fs::path& Path() const { return path_; }

 private:
  fs::path path_;
};

TEST(JpegFile, BeginsAndEndsWithTheMarkersOfTheFormat) {
  const std::vector<unsigned char> bytes = EncodeJpeg(DrawScene(32, 24, 0), 90);
  ASSERT_GT(bytes.size(), 4U);
  EXPECT_EQ(bytes[0], 0xFF);
  EXPECT_EQ(bytes[1], 0xD8);
  EXPECT_EQ(bytes[bytes.size() - 2], 0xFF);
  EXPECT_EQ(bytes[bytes.size() - 1], 0xD9);
}

TEST(JpegFile, StatesItsHeightAndWidthInTheFrameHeader) {
  const std::vector<unsigned char> bytes = EncodeJpeg(DrawScene(300, 200, 0), 90);
  // SOF0, 17 bytes, 8 bits a sample, height 200, width 300, three components.
  const std::vector<unsigned char> frame = {0xFF, 0xC0, 0x00, 0x11, 0x08, 0x00, 0xC8, 0x01, 0x2C, 0x03};
  EXPECT_NE(std::search(bytes.begin(), bytes.end(), frame.begin(), frame.end()), bytes.end());
}

TEST(JpegFile, TimeIsTheFirstSegment) {
  const std::vector<unsigned char> bytes = WithTime({0xFF, 0xD8, 0xFF, 0xD9}, "2026:05:16 09:00:00");
  // Start, APP1 of 72 bytes, "Exif", TIFF of Intel's byte order; tag 0x8769, then 0x9003; the text; end.
  const std::string expected(
      "\xFF\xD8\xFF\xE1\x00\x48"
      "Exif\0\0II*\0\x08\0\0\0"
      "\x01\0\x69\x87\x04\0\x01\0\0\0\x1A\0\0\0\0\0\0\0"
      "\x01\0\x03\x90\x02\0\x14\0\0\0\x2C\0\0\0\0\0\0\0"
      "2026:05:16 09:00:00\0\xFF\xD9",
      78);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), expected);
  EXPECT_THROW(WithTime({0xFF, 0xD8}, "9 o'clock"), std::invalid_argument);
}

TEST(JpegFile, PicturesAreNamedAsOnACamera) {
  ScratchFolder folder;
  WritePictures(folder.Path(), 2, 16, 16);
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder.Path() / "DCIM" / "100KELVA")) {
    names.push_back(entry.path().filename().string());
  }
  EXPECT_THAT(names, testing::UnorderedElementsAre("IMG_0001.JPG", "IMG_0002.JPG"));
}

TEST(JpegFile, AnUnwritableFolderIsAnError) {
  ScratchFolder folder;
  std::ofstream(folder.Path() / "DCIM") << "a file where a folder should be";
  EXPECT_THROW(WritePictures(folder.Path(), 1, 16, 16), std::runtime_error);
}

}  // namespace
