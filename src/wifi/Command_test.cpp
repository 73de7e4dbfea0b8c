#include "Command.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "testing/ScriptedCamera.h"

namespace {

using namespace wifi_testing;

std::string BytesOf(const _VscCdb& cdb) {
  return {cdb.bytes, cdb.bytes + 16};
}

TEST(Block, IsZeroButForItsCodes) {
  EXPECT_EQ(BytesOf(kelva::Block(kelva::Operation::kWriteChunk)), Bytes({0xC5}) + std::string(15, '\0'));
  EXPECT_EQ(BytesOf(kelva::Block(kelva::Operation::kAction, 0x03)), Bytes({0xC0, 0x00, 0x03}) + std::string(13, '\0'));
}

TEST(SendText, WhoseSizeNoIntegerHoldsSendsNothing) {
  ScriptedCamera camera;
  const std::size_t longest = static_cast<std::size_t>(std::numeric_limits<int>::max());
  EXPECT_FALSE(kelva::SendText(camera, _VscCdb{}, "x", longest, true));
  EXPECT_FALSE(kelva::SendText(camera, _VscCdb{}, "x", std::numeric_limits<std::size_t>::max(), true));
}

TEST(ReadAnswer, OfAFailedTransferHasSizeZero) {
  ScriptedCamera camera;
  char answer[4] = {};
  camera.Expect({0xC6}).Asks(4).Answers("abcd").ReturnsFalse();
  EXPECT_EQ(kelva::ReadAnswer(camera, kelva::Block(kelva::Operation::kQuery), answer, 4, true), 0);
  camera.Expect({0xC6}).Asks(4).Answers("abc");
  EXPECT_EQ(kelva::ReadAnswer(camera, kelva::Block(kelva::Operation::kQuery), answer, 4, true), 3);
}

TEST(AskSelectedSize, TakesBytesThatDidNotComeAsZero) {
  ScriptedCamera camera;
  std::uint32_t size = 77;
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({0x34, 0x12}).Flag(false);
  EXPECT_TRUE(kelva::AskSelectedSize(camera, false, size));
  EXPECT_EQ(size, 0x1234u);
  camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Fails();
  EXPECT_FALSE(kelva::AskSelectedSize(camera, true, size));
}

TEST(BytesArrived, LiesBetweenNothingAndTheCapacity) {
  EXPECT_EQ(kelva::BytesArrived(-1, 8), 0u);
  EXPECT_EQ(kelva::BytesArrived(std::numeric_limits<int>::min(), 8), 0u);
  EXPECT_EQ(kelva::BytesArrived(0, 8), 0u);
  EXPECT_EQ(kelva::BytesArrived(8, 8), 8u);
  EXPECT_EQ(kelva::BytesArrived(9, 8), 8u);
  EXPECT_EQ(kelva::BytesArrived(std::numeric_limits<int>::max(), 8), 8u);
}

}  // namespace
