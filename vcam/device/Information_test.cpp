#include "vcam/device/Information.h"

#include <gmock/gmock.h>

#include "vcam/camera/testing/CameraFixture.h"

namespace vcam {
namespace {

using test::Ask;
using test::Tell;

class InformationTest : public test::CameraFixture {};

TEST_F(InformationTest, IsTextsAndANumberInSixHundredAndFortyFourBytes) {
  ASSERT_TRUE(Tell(*camera_, {0xC2, 0, 0x00}).Good());
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x00}, 4).data, (base::Bytes{0x84, 0x02, 0, 0}));
  base::Bytes expected;
  base::AppendText(expected, std::string_view("K100\0Kelva\0Camera\0"
                                              "1.00\0factory\0KELVA\0",
                                              37));
  expected.resize(644);
  EXPECT_EQ(Ask(*camera_, {0xC4, 0, 0x01}, 644).data, expected);
}

TEST_F(InformationTest, LeavesOutCrashLogsWhoseNameIsTooLong) {
  scratch_.Put("CRASH/" + std::string(18, 'a'), "x");
  scratch_.Put("CRASH/" + std::string(19, 'b'), "x");
  ASSERT_TRUE(Tell(*camera_, {0xC2, 0, 0x08}).Good());
  EXPECT_EQ(Ask(*camera_, {0xC4, 0, 0x00}, 4).data, (base::Bytes{1, 0, 0, 0}));
}

TEST_F(InformationTest, TakesTheFirstThirtyOneCalibrationFiles) {
  for (int i = 10; i < 50; ++i) scratch_.Put("CALIB/" + std::to_string(i), "x");
  scratch_.Put("CALIB/" + std::string(32, '0'), "x");
  ASSERT_TRUE(Tell(*camera_, {0xC2, 0, 0x06}).Good());
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x00}, 4).data, (base::Bytes{0x7B, 0x04, 0, 0}));  // 1116 + 31
}

}  // namespace
}  // namespace vcam
