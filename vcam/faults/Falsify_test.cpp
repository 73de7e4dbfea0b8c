#include "vcam/faults/Falsify.h"

#include <gmock/gmock.h>

#include <functional>
#include <map>

#include "vcam/camera/testing/TestSupport.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

using test::Ask;
using test::AsText;
using test::ScratchStorage;
using test::Send;
using test::SendText;
using test::Tell;

class FalsifyTest : public testing::Test {
 protected:
  FalsifyTest() {
    scratch_.Put("a", "0123456789");
    scratch_.Put("CRASH/A", "body");
  }
  void SelectFile() { ASSERT_TRUE(SendText(camera_, {0xC2, 0, 0x01}, R"(I:\a)").Good()); }
  void SelectListing() { ASSERT_TRUE(SendText(camera_, {0xC2, 0, 0x03}, R"(I:\CRASH)").Good()); }
  wire::Reply ReadChunk(std::uint32_t length = 1000) { return Ask(camera_, {0xC4, 0, 0x01}, length); }
  wire::Reply AskReady() { return Ask(camera_, {0xC6, 0, 0x04}, 4); }
  wire::Reply AskSize() { return Ask(camera_, {0xC6, 0, 0x00}, 4); }

  ScratchStorage scratch_;
  VirtualCamera camera_{scratch_.CameraOptions()};
};

TEST_F(FalsifyTest, ShortMovesOneByteLess) {
  SelectFile();
  camera_.Arm({FaultKind::kShort});
  const wire::Reply chunk = ReadChunk();
  EXPECT_EQ(AsText(chunk.data), "012345678");
  EXPECT_EQ(chunk.moved, 9U);
  camera_.Arm({FaultKind::kShort});
  EXPECT_EQ(SendText(camera_, {0xC0, 0, 0xFF}, "ab").moved, 2U);
  camera_.Arm({FaultKind::kShort});
  EXPECT_EQ(Tell(camera_, {0xC0, 0, 0x0D}).moved, 0xFFFFFFFFU);
}

TEST_F(FalsifyTest, SurplusMovesMore) {
  SelectFile();
  camera_.Arm({FaultKind::kSurplusOne});
  EXPECT_EQ(AsText(ReadChunk().data), "0123456789\xEE");
  camera_.Arm({FaultKind::kSurplusTwo});
  const wire::Reply full = ReadChunk(10);
  EXPECT_EQ(full.data.size(), 12U) << "beyond what was asked for";
  EXPECT_EQ(full.moved, 12U);
  camera_.Arm({FaultKind::kSurplusTwo});
  EXPECT_EQ(Tell(camera_, {0xC0, 0, 0x0D}).moved, 2U);
}

TEST_F(FalsifyTest, LiesAboutEverySize) {
  SelectFile();
  camera_.Arm({FaultKind::kLieAboutSize});
  EXPECT_EQ(AskSize().data, (base::Bytes{17, 0, 0, 0}));
  EXPECT_EQ(AskSize().data, (base::Bytes{17, 0, 0, 0}));
  EXPECT_EQ(ReadChunk().moved, 10U);
  camera_.Arm({FaultKind::kLieAboutSize});
  EXPECT_EQ(ReadChunk().moved, 17U) << "the command that is named";
}

TEST_F(FalsifyTest, WrongCountsStandInTheDataSet) {
  SelectListing();
  camera_.Arm({FaultKind::kWrongCount});
  for (int i = 0; i < 2; ++i) {
    const base::Bytes listing = ReadChunk().data;
    EXPECT_EQ(base::Bytes(listing.begin(), listing.begin() + 9),
              (base::Bytes{1, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0x7F, 0x10}));
  }
}

TEST_F(FalsifyTest, WrongNumbersAreSplitWhereChunksAre) {
  SelectListing();
  camera_.Arm({FaultKind::kWrongCount});
  EXPECT_EQ(ReadChunk(6).data, (base::Bytes{1, 0, 0, 0, 0xFF, 0xFF}));
  EXPECT_EQ(Ask(camera_, {0xC4, 0, 0x01, 6}, 3).data, (base::Bytes{0xFF, 0x7F, 0x10}));
}

TEST_F(FalsifyTest, WrongOffsetsStandInTheDataSet) {
  SelectListing();
  camera_.Arm({FaultKind::kWrongOffset});
  const base::Bytes listing = ReadChunk().data;
  EXPECT_EQ(base::Bytes(listing.begin() + 16, listing.begin() + 20), (base::Bytes{0xF0, 0xFF, 0xFF, 0x7F}));
  EXPECT_EQ(base::Bytes(listing.begin() + 28, listing.begin() + 32), (base::Bytes{0xF0, 0xFF, 0xFF, 0x7F}));
}

TEST_F(FalsifyTest, NamesLoseTheirNul) {
  SelectListing();
  camera_.Arm({FaultKind::kUnterminatedName});
  const base::Bytes listing = ReadChunk().data;
  EXPECT_EQ(AsText(base::Bytes(listing.begin() + 44, listing.end())), ".A..AAA");
}

TEST_F(FalsifyTest, AnswersNeverEnd) {
  SelectFile();
  camera_.Arm({FaultKind::kEndless});
  EXPECT_EQ(AsText(ReadChunk(12).data), "0123456789\xEE\xEE");
  EXPECT_EQ(Ask(camera_, {0xC4, 0, 0x01, 200}, 12).data, base::Bytes(12, 0xEE)) << "far behind the end";
  const base::Bytes console = Ask(camera_, {0xC6, 0, 0x02}, 1000).data;
  EXPECT_EQ(console.size(), 1000U);
  EXPECT_EQ(console[4], 1) << "and there is more";
}

TEST_F(FalsifyTest, TheSameQuestionGetsAnotherAnswer) {
  SelectFile();
  camera_.Arm({FaultKind::kChanging});
  EXPECT_EQ(AskSize().data, (base::Bytes{11, 0, 0, 0}));
  EXPECT_EQ(AskSize().data, (base::Bytes{12, 0, 0, 0}));
  EXPECT_EQ(ReadChunk().data[0], '0' + 3);
  EXPECT_TRUE(Tell(camera_, {0xC0, 0, 0x0D}).Good());
  EXPECT_FALSE(Tell(camera_, {0xC0, 0, 0x0D}).Good());
}

TEST_F(FalsifyTest, LeavesRefusalsAsTheyAre) {
  camera_.Arm({FaultKind::kSurplusOne});
  const wire::Reply reply = ReadChunk();
  EXPECT_EQ(reply.sense, sense::kWrongSequence);
  EXPECT_EQ(reply.moved, 0U);
}

}  // namespace
}  // namespace vcam
