#include <gmock/gmock.h>

#include "vcam/camera/testing/CameraFixture.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

using test::Ask;
using test::Send;
using test::SendText;
using test::Tell;

class ActionsTest : public test::CameraFixture {};

TEST_F(ActionsTest, SetsTheClockAndKeepsItOverARestart) {
  const base::Bytes time{0xD0, 7, 1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0};
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0x04}, time).moved, 14U);
  Restart();
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x03}, 14).data, time);
}

TEST_F(ActionsTest, RefusesATimeThatIsNone) {
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0x04}, base::Bytes(14)).sense, sense::kBadParameter);
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0x04}, base::Bytes(13)).sense, sense::kWrongDataLength);
  EXPECT_EQ(Tell(*camera_, {0xC0, 0, 0x04}).sense, sense::kWrongDataLength);
}

TEST_F(ActionsTest, IsNotReadyWhileItBoots) {
  ASSERT_TRUE(Tell(*camera_, {0xC0, 0, 0x03}).Good());
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x04}, 4).data, base::Bytes(4));
  EXPECT_EQ(Tell(*camera_, {0xC2, 0, 0x02}).sense, sense::kBecomingReady);
  now_ += std::chrono::milliseconds(1500);
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x04}, 4).data, (base::Bytes{1, 0, 0, 0}));
  EXPECT_TRUE(Tell(*camera_, {0xC2, 0, 0x02}).Good());
}

TEST_F(ActionsTest, ForgetsTheSelectionWhenItReboots) {
  ASSERT_TRUE(Tell(*camera_, {0xC2, 0, 0x02}).Good());
  ASSERT_TRUE(Tell(*camera_, {0xC0, 0, 0x03}).Good());
  now_ += std::chrono::seconds(2);
  EXPECT_EQ(Ask(*camera_, {0xC4, 0, 0x01}, 100).sense, sense::kWrongSequence);
}

TEST_F(ActionsTest, DeletesAFileByPath) {
  scratch_.Put("DCIM/a", "1");
  EXPECT_TRUE(SendText(*camera_, {0xC0, 0, 0x01}, R"(I:\DCIM\a)").Good());
  EXPECT_FALSE(scratch_.Has("DCIM/a"));
  EXPECT_EQ(SendText(*camera_, {0xC0, 0, 0x01}, R"(I:\DCIM\a)").sense, sense::kNotFound);
  EXPECT_EQ(SendText(*camera_, {0xC0, 0, 0x01}, R"(I:\DCIM)").sense, sense::kNotFound);
  EXPECT_EQ(SendText(*camera_, {0xC0, 0, 0x01}, R"(I:\)").sense, sense::kBadParameter);
  EXPECT_EQ(SendText(*camera_, {0xC0, 0, 0x01}, R"(I:\..\x)").sense, sense::kBadParameter);
}

TEST_F(ActionsTest, DeletesAllFilesOfAPictureByItsIdentity) {
  scratch_.Put("DCIM/100ABCDE/IMG_0007.JPG", "1");
  scratch_.Put("DCIM/100ABCDE/IMG_0007.RAW", "1");
  scratch_.Put("DCIM/100ABCDE/IMG_0008.JPG", "1");
  const base::Bytes identity{'A', 'B', 'C', 'D', 'E', 0, 0, 0, 'I', 'M', 'G', '_',
                             0,   0,   0,   0,   100, 0, 0, 0, 7,   0,   0,   0};
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0x05}, identity).moved, 24U);
  EXPECT_FALSE(scratch_.Has("DCIM/100ABCDE/IMG_0007.JPG"));
  EXPECT_FALSE(scratch_.Has("DCIM/100ABCDE/IMG_0007.RAW"));
  EXPECT_TRUE(scratch_.Has("DCIM/100ABCDE/IMG_0008.JPG"));
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0x05}, identity).sense, sense::kNotFound);
}

TEST_F(ActionsTest, RefusesAnIdentityThatIsNone) {
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0x05}, base::Bytes(23)).sense, sense::kWrongDataLength);
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0x05}, base::Bytes(24, 0xFF)).sense, sense::kBadParameter);
  base::Bytes outside{'/', '.', '.', 0, 0, 0, 0, 0, 'I', 'M', 'G', '_', 0, 0, 0, 0, 100, 0, 0, 0, 7, 0, 0, 0};
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0x05}, outside).sense, sense::kBadParameter);
}

TEST_F(ActionsTest, DeletesABatchByKeys) {
  scratch_.Put("DCIM/a", "abc");
  scratch_.Put("DCIM/b", "abc");
  scratch_.Put("DCIM/c", "abd");
  EXPECT_TRUE(SendText(*camera_, {0xC0, 0, 0x06}, "a9993e364706816aba3e25717850c26c9cd0d89d").Good());
  EXPECT_FALSE(scratch_.Has("DCIM/a"));
  EXPECT_FALSE(scratch_.Has("DCIM/b"));
  EXPECT_TRUE(scratch_.Has("DCIM/c"));
  // Two numbers of 4 bytes, then the text.
  const base::Bytes console = Ask(*camera_, {0xC6, 0, 0x02}, 1000).data;
  ASSERT_GT(console.size(), 8U);
  EXPECT_THAT(std::string(console.begin() + 8, console.end()), testing::HasSubstr("deleted 2 files by key"));
  EXPECT_EQ(SendText(*camera_, {0xC0, 0, 0x06}, "abcd").sense, sense::kBadParameter);
  EXPECT_TRUE(SendText(*camera_, {0xC0, 0, 0x06}, "").Good());
}

TEST_F(ActionsTest, DeletesNothingWhenOneKeyOfABatchIsQualified) {
  scratch_.Put("DCIM/a", "abc");
  const std::string key = "a9993e364706816aba3e25717850c26c9cd0d89d";
  EXPECT_EQ(SendText(*camera_, {0xC0, 0, 0x06}, key + key + ".RAW").sense, sense::kBadParameter);
  EXPECT_TRUE(scratch_.Has("DCIM/a"));
}

TEST_F(ActionsTest, TakesMonitorLinesWithTheirNul) {
  EXPECT_EQ(SendText(*camera_, {0xC0, 0, 0xFF}, "").moved, 1U);
  EXPECT_EQ(Send(*camera_, {0xC0, 0, 0xFF}, {'a'}).sense, sense::kWrongDataLength);
}

}  // namespace
}  // namespace vcam
