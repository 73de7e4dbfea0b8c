#include "vcam/device/SampleImage.h"

#include <gmock/gmock.h>

#include "vcam/camera/testing/TestSupport.h"

namespace vcam {
namespace {

TEST(SampleImage, IsAJpegFileWithTheComment) {
  const base::Bytes file = SampleJpeg("hello");
  // Start of image, a comment segment of 7 bytes, the text, and the next segment.
  const base::Bytes start{0xFF, 0xD8, 0xFF, 0xFE, 0x00, 0x07, 'h', 'e', 'l', 'l', 'o', 0xFF, 0xE0};
  EXPECT_EQ(base::Bytes(file.begin(), file.begin() + 13), start);
  EXPECT_EQ(base::Bytes(file.end() - 2, file.end()), (base::Bytes{0xFF, 0xD9}));
}

TEST(SampleImage, CutsACommentThatIsTooLong) {
  const base::Bytes file = SampleJpeg(std::string(70000, 'x'));
  EXPECT_EQ(base::Bytes(file.begin() + 4, file.begin() + 6), (base::Bytes{0xFF, 0xFF}));
}

}  // namespace
}  // namespace vcam
