#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>

#include "vcam/camera/testing/CameraFixture.h"
#include "vcam/device/SenseCodes.h"

namespace {

std::size_t mostToWrite = SIZE_MAX;

}  // namespace

// The linker puts this in the place of the C library's (--wrap). A call may write less than it is given.
extern "C" {
ssize_t __real_pwrite(int file, const void* bytes, std::size_t count, off_t offset);
ssize_t __wrap_pwrite(int file, const void* bytes, std::size_t count, off_t offset) {
  return __real_pwrite(file, bytes, std::min(count, mostToWrite), offset);
}
}

namespace vcam {
namespace {

using test::Ask;
using test::AsText;
using test::Send;
using test::SendText;
using test::Tell;

class ChunksTest : public test::CameraFixture {};

TEST_F(ChunksTest, RefusesAChunkThatLeavesAGap) {
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x01, 1}, R"(I:\a)").Good());
  EXPECT_EQ(Send(*camera_, {0xC5, 0, 1}, {'x'}).sense, sense::kOutOfRange);
  EXPECT_EQ(Send(*camera_, {0xC5, 0, 0xFF, 0xFF, 0xFF, 0xFF}, {'x'}).sense, sense::kOutOfRange);
  EXPECT_TRUE(Send(*camera_, {0xC5, 0, 0}, {'x', 'y'}).Good());
  EXPECT_TRUE(Send(*camera_, {0xC5, 0, 1}, {'z'}).Good()) << "the same place again";
  EXPECT_EQ(scratch_.Get("a"), "xz");
}

TEST_F(ChunksTest, ReadsAtTheOffsetThatIsAskedFor) {
  scratch_.Put("a", "0123456789");
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x01}, R"(I:\a)").Good());
  EXPECT_EQ(AsText(Ask(*camera_, {0xC4, 0, 0x01, 6}, 3).data), "678");
  EXPECT_EQ(AsText(Ask(*camera_, {0xC4, 0, 0x01, 1}, 3).data), "123");
  EXPECT_EQ(Ask(*camera_, {0xC4, 0, 0x01, 11}, 3).sense, sense::kOutOfRange);
}

TEST_F(ChunksTest, ACameraThatIsReadForwardOnlySendsTheNextBytes) {
  scratch_.Put("a", "0123456789");
  options_.forwardOnly = true;
  Restart();
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x01}, R"(I:\a)").Good());
    EXPECT_EQ(AsText(Ask(*camera_, {0xC4, 0, 0x01, 6}, 3).data), "012");
    EXPECT_EQ(AsText(Ask(*camera_, {0xC4, 0, 0x01, 0}, 3).data), "345");
    EXPECT_TRUE(Tell(*camera_, {0xC4, 0, 0x01, 0}).Good()) << "without data nothing moves on";
    EXPECT_EQ(AsText(Ask(*camera_, {0xC4, 0, 0x01, 99}, 9).data), "6789");
    EXPECT_EQ(AsText(Ask(*camera_, {0xC4, 0, 0x01, 0}, 9).data), "");
  }
}

TEST_F(ChunksTest, RefusesWritingWithoutAFile) {
  EXPECT_EQ(Send(*camera_, {0xC5}, {'x'}).sense, sense::kWrongSequence);
  EXPECT_EQ(Tell(*camera_, {0xC3}).sense, sense::kWrongSequence);
  EXPECT_EQ(Ask(*camera_, {0xC5}, 4).sense, sense::kWrongDataLength);
  EXPECT_EQ(Tell(*camera_, {0xC3, 0, 1}).sense, sense::kBadCommandField);
}

TEST_F(ChunksTest, WritesAllAlsoWhereOneCallWritesLess) {
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x01, 1}, R"(I:\a)").Good());
  mostToWrite = 2;
  EXPECT_TRUE(Send(*camera_, {0xC5, 0, 0}, {'v', 'w', 'x', 'y', 'z'}).Good());
  mostToWrite = SIZE_MAX;
  EXPECT_EQ(scratch_.Get("a"), "vwxyz");
}

TEST_F(ChunksTest, ClosesTheFileWithTheEndAndNotesIt) {
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x01, 1}, R"(I:\A_NAME_THAT_IS_LONG.TXT)").Good());
  ASSERT_TRUE(Send(*camera_, {0xC5, 0, 0}, {'x', 'y'}).Good());
  ASSERT_TRUE(Tell(*camera_, {0xC3}).Good());
  EXPECT_EQ(Tell(*camera_, {0xC3}).sense, sense::kWrongSequence);
  EXPECT_EQ(Send(*camera_, {0xC5}, {'z'}).sense, sense::kWrongSequence);
  EXPECT_EQ(scratch_.Get("A_NAME_THAT_IS_LONG.TXT"), "xy");
  EXPECT_THAT(AsText(Ask(*camera_, {0xC6, 0, 0x02}, 65536).data),
              testing::HasSubstr(R"(wrote I:\A_NAME_THAT_IS_LONG.TXT, 2 bytes)"));
}

TEST_F(ChunksTest, ClosesTheFileWhenFirmwareIsAnnounced) {
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x01, 1}, R"(I:\a)").Good());
  ASSERT_TRUE(Tell(*camera_, {0xC1, 0, 1}).Good());
  ASSERT_TRUE(Send(*camera_, {0xC5}, {'x'}).Good());
  EXPECT_EQ(scratch_.Get("a"), "");
  EXPECT_EQ(Tell(*camera_, {0xC3}).sense, sense::kWrongSequence);
}

TEST_F(ChunksTest, StopsWritingAndReadingAtAReboot) {
  for (const std::uint8_t forWriting : base::Bytes{1, 0}) {
    scratch_.Put("a", "1");
    ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x01, forWriting}, R"(I:\a)").Good());
    ASSERT_TRUE(Tell(*camera_, {0xC0, 0, 0x03}).Good());
    now_ += std::chrono::minutes(1);
    EXPECT_EQ(Send(*camera_, {0xC5}, {'x'}).sense, sense::kWrongSequence);
    EXPECT_EQ(Ask(*camera_, {0xC4, 0, 1}, 1).sense, sense::kWrongSequence);
  }
}

TEST_F(ChunksTest, StopsWritingWhenSomethingElseIsSelected) {
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x01, 1}, R"(I:\a)").Good());
  ASSERT_TRUE(Tell(*camera_, {0xC2, 0, 0x02}).Good());
  EXPECT_EQ(Send(*camera_, {0xC5}, {'x'}).sense, sense::kWrongSequence);
}

TEST_F(ChunksTest, RefusesToReadWhatAFileHasLost) {
  scratch_.Put("a", "12345");
  ASSERT_TRUE(SendText(*camera_, {0xC2, 0, 0x01}, R"(I:\a)").Good());
  std::filesystem::resize_file(scratch_.Path() / "a", 2);
  EXPECT_EQ(Ask(*camera_, {0xC4, 0, 1}, 5).sense, sense::kReadError);
}

TEST_F(ChunksTest, TakesAFirmwareImageAndWritesIt) {
  ASSERT_TRUE(Tell(*camera_, {0xC1, 0, 3}).Good());
  ASSERT_EQ(Send(*camera_, {0xC5, 0, 0}, {'a', 'b'}).moved, 2U);
  ASSERT_TRUE(Send(*camera_, {0xC5, 0, 2}, {'c'}).Good());
  EXPECT_EQ(Send(*camera_, {0xC5, 0, 3}, {'d'}).sense, sense::kOutOfRange);
  ASSERT_TRUE(Tell(*camera_, {0xC0, 0, 0x02}).Good());
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x01}, 12).data, (base::Bytes{0, 0, 0, 0x3F, 1, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x04}, 4).data, base::Bytes(4)) << "not ready while it writes";
  EXPECT_EQ(Tell(*camera_, {0xC2, 0, 0x02}).sense, sense::kMicrocodeDownload);
  now_ += std::chrono::seconds(3);
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x01}, 12).data, (base::Bytes{0, 0, 0x80, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_TRUE(Tell(*camera_, {0xC2, 0, 0x00}).Good());
  EXPECT_THAT(AsText(Ask(*camera_, {0xC4, 0, 1}, 644).data), testing::HasSubstr("a9993e364706"));
}

TEST_F(ChunksTest, GivesUpAnUpgradeWhenSomethingIsSelected) {
  ASSERT_TRUE(Tell(*camera_, {0xC1, 0, 2}).Good());
  ASSERT_TRUE(Send(*camera_, {0xC5}, {'a'}).Good());
  ASSERT_TRUE(Tell(*camera_, {0xC2, 0, 0x02}).Good());
  EXPECT_EQ(Send(*camera_, {0xC5, 0, 1}, {'b'}).sense, sense::kWrongSequence);
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x01}, 12).data[8], 1) << "failed";
}

TEST_F(ChunksTest, FailsAnUpgradeThatIsEmptyOrEndsTooSoon) {
  for (const std::uint8_t length : base::Bytes{0, 3}) {
    ASSERT_TRUE(Tell(*camera_, {0xC1, 0, length}).Good());
    ASSERT_TRUE(Tell(*camera_, {0xC0, 0, 0x02}).Good());
    EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x01}, 12).data, (base::Bytes{0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0}));
  }
  EXPECT_EQ(Tell(*camera_, {0xC0, 0, 0x02}).sense, sense::kWrongSequence);
}

TEST_F(ChunksTest, CanFailAnUpgradeHalfWay) {
  camera_->Arm({FaultKind::kUpgradeFails});
  ASSERT_TRUE(Tell(*camera_, {0xC1, 0, 1}).Good());
  ASSERT_TRUE(Send(*camera_, {0xC5}, {'x'}).Good());
  ASSERT_TRUE(Tell(*camera_, {0xC0, 0, 0x02}).Good());
  now_ += std::chrono::seconds(3);
  EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x01}, 12).data, (base::Bytes{0, 0, 0x40, 0x3F, 0, 0, 0, 0, 1, 0, 0, 0}));
}

TEST_F(ChunksTest, NotesAnUpgradeInTheConsole) {
  Ask(*camera_, {0xC6, 0, 0x02}, 65536);
  ASSERT_TRUE(Tell(*camera_, {0xC1, 0, 1}).Good());
  ASSERT_TRUE(Send(*camera_, {0xC5}, {'x'}).Good());
  ASSERT_TRUE(Tell(*camera_, {0xC0, 0, 0x02}).Good());
  EXPECT_THAT(AsText(Ask(*camera_, {0xC6, 0, 0x02}, 65536).data),
              testing::EndsWith("upgrade announced, 1 bytes\nupgrade received\n"));
}

TEST_F(ChunksTest, FailsOneUpgradeAlone) {
  camera_->Arm({FaultKind::kUpgradeFails});
  for (const std::uint8_t failed : base::Bytes{1, 0}) {
    ASSERT_TRUE(Tell(*camera_, {0xC1, 0, 1}).Good());
    ASSERT_TRUE(Send(*camera_, {0xC5}, {'x'}).Good());
    ASSERT_TRUE(Tell(*camera_, {0xC0, 0, 0x02}).Good());
    now_ += std::chrono::seconds(3);
    EXPECT_EQ(Ask(*camera_, {0xC6, 0, 0x01}, 12).data[8], failed);
  }
}

}  // namespace
}  // namespace vcam
