#include <gmock/gmock.h>

#include "vcam/camera/testing/CameraFixture.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

using test::Ask;
using test::Tell;

class CaptureTest : public test::CameraFixture {};

TEST_F(CaptureTest, PutsANewPictureIntoTheStorage) {
  EXPECT_TRUE(Tell(*camera_, {0xC0, 0, 0x00}).Good());
  EXPECT_TRUE(Tell(*camera_, {0xC0, 0, 0x00}).Good());
  EXPECT_THAT(scratch_.Get("DCIM/100KELVA/IMG_0001.JPG"), testing::HasSubstr("K100 DCIM/100KELVA/IMG_0001.JPG"));
  EXPECT_NE(scratch_.Get("DCIM/100KELVA/IMG_0001.JPG"), scratch_.Get("DCIM/100KELVA/IMG_0002.JPG"));
}

TEST_F(CaptureTest, CountsOnInTheLastDirectory) {
  scratch_.Put("DCIM/100KELVA/IMG_0500.JPG", "");
  scratch_.Put("DCIM/105OTHER/ABC_0041.RAW", "");
  ASSERT_TRUE(Tell(*camera_, {0xC0, 0, 0x00}).Good());
  EXPECT_TRUE(scratch_.Has("DCIM/105OTHER/IMG_0042.JPG"));
}

TEST_F(CaptureTest, StaysInTheFirstDirectoryWhoeverNamedIt) {
  scratch_.Put("DCIM/100ABCDE/IMG_0001.JPG", "");
  ASSERT_TRUE(Tell(*camera_, {0xC0, 0, 0x00}).Good());
  EXPECT_TRUE(scratch_.Has("DCIM/100ABCDE/IMG_0002.JPG"));
}

TEST_F(CaptureTest, StartsANewDirectoryAfterTheLastNumber) {
  scratch_.Put("DCIM/100KELVA/IMG_9999.JPG", "");
  ASSERT_TRUE(Tell(*camera_, {0xC0, 0, 0x00}).Good());
  EXPECT_TRUE(scratch_.Has("DCIM/101KELVA/IMG_0001.JPG"));
}

TEST_F(CaptureTest, RefusesWhenAllNumbersAreUsed) {
  scratch_.Put("DCIM/999KELVA/IMG_9999.JPG", "");
  EXPECT_EQ(Tell(*camera_, {0xC0, 0, 0x00}).sense, sense::kStorageFull);
}

TEST_F(CaptureTest, CostsBattery) {
  ASSERT_TRUE(Tell(*camera_, {0xC0, 0, 0x00}).Good());
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x06}, 4).data, (base::Bytes{0, 0x80, 0xC7, 0x42}));  // 99.75
}

TEST_F(CaptureTest, RefusesWhenTheStorageCannotTakeIt) {
  scratch_.Put("DCIM", "a file where the folder should be");
  EXPECT_FALSE(Tell(*camera_, {0xC0, 0, 0x00}).Good());
}

}  // namespace
}  // namespace vcam
