#include <gmock/gmock.h>

#include "vcam/camera/testing/CameraFixture.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

using test::Ask;
using test::AsText;
using test::Send;
using test::SendText;

class QueriesTest : public test::CameraFixture {};

TEST_F(QueriesTest, TellsTheTime) {
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x03}, 14).data, (base::Bytes{0xEA, 7, 3, 0, 14, 0, 15, 0, 9, 0, 26, 0, 0x17, 2}));
}

TEST_F(QueriesTest, TellsTheBatteryAsPerCent) {
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x06}, 4).data, (base::Bytes{0, 0, 0xC8, 0x42}));
}

TEST_F(QueriesTest, TellsTheManualControlsInThirtyTwoBytes) {
  base::Bytes expected{0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0};
  expected.insert(expected.end(), {0xFC, 0xA9, 0xF1, 0xD2, 0x4D, 0x62, 0x80, 0x3F});  // 0.008
  expected.insert(expected.end(), {0x66, 0x66, 0x66, 0x66, 0x66, 0x66, 0x06, 0x40});  // 2.8
  expected.insert(expected.end(), {100, 0, 0, 0});
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x07}, 40).data, expected);
}

TEST_F(QueriesTest, GivesTheConsoleLogInPieces) {
  EXPECT_EQ(AsText(Ask(*camera_, {0xC6, 0, 0x02}, 15).data), std::string("\1\0\0\0\1\0\0\0started", 15));
  const wire::Reply rest = Ask(*camera_, {0xC6, 0, 0x02}, 1000);
  EXPECT_EQ(AsText(rest.data), std::string("\1\0\0\0\0\0\0\0, serial K100\n", 22));
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x02}, 1000).data.size(), 8U);
}

TEST_F(QueriesTest, ConsoleLogGrowsWithWhatHappens) {
  Ask(*camera_, {0xC6, 0, 0x02}, 1000);
  ASSERT_TRUE(SendText(*camera_, {0xC0, 0, 0xFF}, "help").Good());
  ASSERT_TRUE(SendText(*camera_, {0xC0, 0, 0xFE}, "q").Good());
  EXPECT_THAT(AsText(Ask(*camera_, {0xC6, 0, 0x02}, 1000).data), testing::EndsWith("> help\n> q\n"));
}

TEST_F(QueriesTest, ConsoleLogKeepsItsTextWhenThereIsNoRoomForIt) {
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x02}, 8).data, (base::Bytes{1, 0, 0, 0, 1, 0, 0, 0}));
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x02}, 3).data, (base::Bytes{1, 0, 0}));
  EXPECT_GT(Ask(*camera_, {0xC6, 0, 0x02}, 1000).data.size(), 8U);
}

TEST_F(QueriesTest, AnswersInTheRoomThereIs) {
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x03}, 3).moved, 3U);
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x03}, 0).moved, 0U);
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x03}, 65536).moved, 14U);
}

TEST_F(QueriesTest, RefusesDataFromTheHost) {
  for (std::uint8_t query = 1; query <= 7; ++query) {
    EXPECT_EQ(Send(*camera_, {0xC6, 0, query}, {1, 2, 3, 4}).sense, sense::kBadCommandField) << int{query};
  }
}

}  // namespace
}  // namespace vcam
