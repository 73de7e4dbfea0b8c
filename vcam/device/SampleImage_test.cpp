#include "vcam/device/SampleImage.h"

#include <gmock/gmock.h>

#include "vcam/device/TestSupport.h"

namespace vcam {
namespace {

TEST(SampleImage, IsAJpegFileWithTheComment) {
  const Bytes file = SampleJpeg("hello");
  // Start of image, a comment segment of 7 bytes, the text, and the next segment.
  const Bytes start{0xFF, 0xD8, 0xFF, 0xFE, 0x00, 0x07, 'h', 'e', 'l', 'l', 'o', 0xFF, 0xE0};
  EXPECT_EQ(Bytes(file.begin(), file.begin() + 13), start);
  EXPECT_EQ(Bytes(file.end() - 2, file.end()), (Bytes{0xFF, 0xD9}));
}

TEST(SampleImage, CutsACommentThatIsTooLong) {
  const Bytes file = SampleJpeg(std::string(70000, 'x'));
  EXPECT_EQ(Bytes(file.begin() + 4, file.begin() + 6), (Bytes{0xFF, 0xFF}));
}

}  // namespace
}  // namespace vcam
