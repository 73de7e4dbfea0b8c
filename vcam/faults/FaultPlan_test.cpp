#include "vcam/faults/FaultPlan.h"

#include <gmock/gmock.h>

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

class FaultPlanTest : public testing::Test {
 protected:
  FaultPlanTest() { scratch_.Put("a", "0123456789"); }

  void SelectFile() { ASSERT_TRUE(SendText(camera_, {0xC2, 0, 0x01}, R"(I:\a)").Good()); }
  wire::Reply ReadChunk(std::uint8_t offset = 0) { return Ask(camera_, {0xC4, 0, 0x01, offset}, 100); }
  wire::Reply AskReady() { return Ask(camera_, {0xC6, 0, 0x04}, 4); }

  ScratchStorage scratch_;
  VirtualCamera camera_{scratch_.CameraOptions()};
};

TEST_F(FaultPlanTest, FailsTheNthCommandAndNoOther) {
  camera_.Arm({FaultKind::kFail, 2});
  EXPECT_TRUE(AskReady().Good());
  const wire::Reply failed = AskReady();
  EXPECT_EQ(failed.status, wire::kScsiCheckCondition);
  EXPECT_EQ(failed.sense, sense::kInternalFailure);
  EXPECT_TRUE(AskReady().Good());
}

TEST_F(FaultPlanTest, DoesNotRunACommandThatFails) {
  camera_.Arm({FaultKind::kFail});
  EXPECT_FALSE(Tell(camera_, {0xC0, 0, 0x00}).Good());
  EXPECT_FALSE(scratch_.Has("DCIM"));
}

TEST_F(FaultPlanTest, TakesTheZerothCommandForTheNext) {
  camera_.Arm({FaultKind::kStall, 0});
  EXPECT_EQ(AskReady().transport, wire::Transport::kStall);
  EXPECT_TRUE(AskReady().Good());
}

TEST_F(FaultPlanTest, StallsAndHangs) {
  camera_.Arm({FaultKind::kStall, 1});
  camera_.Arm({FaultKind::kHang, 2});
  EXPECT_EQ(AskReady().transport, wire::Transport::kStall);
  EXPECT_EQ(AskReady().transport, wire::Transport::kHang);
  EXPECT_EQ(AskReady().transport, wire::Transport::kOk);
}

TEST_F(FaultPlanTest, SlowsEveryCommandDown) {
  camera_.Arm({FaultKind::kSlow, 250});
  EXPECT_EQ(AskReady().delay.count(), 250);
  EXPECT_EQ(Tell(camera_, {0xC9}).delay.count(), 250);
  camera_.Arm({FaultKind::kSlow, 0xFFFFFFFFFFFFFFFF});
  EXPECT_EQ(AskReady().delay.count(), 250 + 3'600'000) << "an hour at most";
}

TEST_F(FaultPlanTest, UnplugsAfterThatManyBytes) {
  SelectFile();
  camera_.Arm({FaultKind::kUnplugAtByte, 13});
  EXPECT_EQ(ReadChunk().transport, wire::Transport::kOk);
  const wire::Reply last = ReadChunk();
  EXPECT_EQ(last.transport, wire::Transport::kGone);
  EXPECT_EQ(AsText(last.data), "012");
  EXPECT_EQ(last.moved, 3U);
  EXPECT_TRUE(camera_.Gone());
  EXPECT_EQ(AskReady().transport, wire::Transport::kGone);
}

TEST_F(FaultPlanTest, UnplugsWhenTheLastByteHasMoved) {
  camera_.Arm({FaultKind::kUnplugAtByte, 4});
  const wire::Reply last = AskReady();
  EXPECT_EQ(last.transport, wire::Transport::kGone);
  EXPECT_EQ(last.data.size(), 4U);
}

TEST_F(FaultPlanTest, UnpluggingAtByteZeroEndsTheNextCommand) {
  camera_.Arm({FaultKind::kUnplugAtByte, 0});
  EXPECT_EQ(Tell(camera_, {0xC0, 0, 0x0D}).transport, wire::Transport::kGone);
}

TEST_F(FaultPlanTest, WritesOnlyTheBytesThatCameBeforeTheUnplug) {
  ASSERT_TRUE(SendText(camera_, {0xC2, 0, 0x01, 1}, R"(I:\b)").Good());
  camera_.Arm({FaultKind::kUnplugAtByte, 3});
  const wire::Reply reply = Send(camera_, {0xC5}, {'a', 'b', 'c', 'd'});
  EXPECT_EQ(reply.transport, wire::Transport::kGone);
  EXPECT_EQ(reply.moved, 3U);
  EXPECT_EQ(scratch_.Get("b"), "abc");
}

TEST_F(FaultPlanTest, TakesAllFaultsBack) {
  camera_.Arm({FaultKind::kFail});
  camera_.Arm({FaultKind::kSlow, 10});
  camera_.Disarm();
  const wire::Reply reply = AskReady();
  EXPECT_TRUE(reply.Good());
  EXPECT_EQ(reply.delay.count(), 0);
}

}  // namespace
}  // namespace vcam
