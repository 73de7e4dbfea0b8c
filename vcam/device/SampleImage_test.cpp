#include "vcam/device/SampleImage.h"

#include <gmock/gmock.h>

#include "vcam/device/Sha1.h"

namespace vcam {
namespace {

TEST(SampleImage, IsAJpegFileWithTheComment) {
  const base::Bytes file = SampleJpeg("hello");
  // Start of image, a comment segment of 7 bytes, the text, and the next segment.
  const base::Bytes start{0xFF, 0xD8, 0xFF, 0xFE, 0x00, 0x07, 'h', 'e', 'l', 'l', 'o', 0xFF, 0xE0};
  EXPECT_EQ(base::Bytes(file.begin(), file.begin() + 13), start);
  EXPECT_EQ(base::Bytes(file.end() - 2, file.end()), (base::Bytes{0xFF, 0xD9}));
}

TEST(SampleImage, IsTheSameImageEachTime) {
  base::Bytes file = SampleJpeg("hello");
  file.erase(file.begin() + 2, file.begin() + 11);  // the comment
  Sha1 digest;
  digest.Update(file);
  EXPECT_EQ(digest.Hex(), "a864ca5b469b1b01e402dc38b334902a47875cd1");
}

TEST(SampleImage, CutsACommentThatIsTooLong) {
  const base::Bytes file = SampleJpeg(std::string(70000, 'x'));
  EXPECT_EQ(base::Bytes(file.begin() + 4, file.begin() + 6), (base::Bytes{0xFF, 0xFF}));
  EXPECT_EQ(file.size(), 350U + 4U + 65533U);
}

}  // namespace
}  // namespace vcam
