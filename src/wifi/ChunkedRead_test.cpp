#include "ChunkedRead.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "VscRegister.h"
#include "testing/ScriptedCamera.h"

namespace {

using namespace wifi_testing;

const kelva::ChunkedRead kPlainRead = {kelva::read_chunk::kSelected, true, kelva::ReadProgress::None()};

// Takes chunks and keeps none.
class CountingSink : public kelva::ChunkSink {
 public:
  void Append(std::span<const char> bytes) override { received += bytes.size(); }
  std::uint64_t received = 0;
};

// Answers every read with a full chunk without touching the buffer, and remembers the last offset asked for.
class EndlessCamera : public PlainCamera {
 public:
  bool Transfer(const _VscCdb& cdb, int, int&, char*, bool) override {
    ++transfers;
    lastOffset.assign(cdb.bytes + 3, cdb.bytes + 7);
    return true;
  }
  int transfers = 0;
  std::string lastOffset;
};

// 64 chunks of 64 MiB end at 2^32, an offset that the command cannot carry.
TEST(ReadChunks, FailsWhenTheNextOffsetWouldNotFit) {
  EndlessCamera camera;
  CountingSink sink;
  const int chunkSize = 64 * 1024 * 1024;
  EXPECT_FALSE(kelva::ReadChunks(camera, chunkSize, kPlainRead, sink));
  EXPECT_EQ(camera.transfers, 64);
  EXPECT_EQ(Hex(camera.lastOffset), Hex(Bytes({0, 0, 0, 0xFC})));
  EXPECT_EQ(sink.received, std::uint64_t{1} << 32);
}

TEST(ReadChunks, WithoutAPositiveChunkSizeFailsWithoutATransfer) {
  ScriptedCamera camera;
  CountingSink sink;
  for (const int chunkSize : {0, -1}) {
    EXPECT_FALSE(kelva::ReadChunks(camera, chunkSize, kPlainRead, sink));
  }
}

TEST(ReadChunks, HandsEachChunkOnAsItArrives) {
  ScriptedCamera camera;
  camera.Expect({0xC4, 0x00, 0x01, 0}).Asks(4).Answers("abcd");
  camera.Expect({0xC4, 0x00, 0x01, 4}).Asks(4).Answers("e");
  kelva::VectorSink sink;
  const int chunkSize = 4;
  EXPECT_TRUE(kelva::ReadChunks(camera, chunkSize, kPlainRead, sink));
  EXPECT_EQ(sink.Received(), 5u);
  EXPECT_EQ(ToString(sink.Take()), "abcde");
}

// The size asked is what a full chunk is held against, even when the transfer itself changes the chunk size.
TEST(ReadChunks, HoldsAChunkAgainstTheSizeThatWasAsked) {
  ScriptedCamera camera;
  int chunkSize = 4;
  camera.Expect({0xC4, 0x00, 0x01, 0}).Asks(4).Answers("abcd").Moves(8).Then([&] { chunkSize = 8; });
  CountingSink sink;
  EXPECT_TRUE(kelva::ReadChunks(camera, chunkSize, kPlainRead, sink));
  EXPECT_EQ(sink.received, 4u);
}

TEST(VectorSink, KeepsNoMoreThanWasClaimedAndCountsTheRest) {
  kelva::VectorSink sink(3);
  const std::string chunk = "abcd";
  sink.Append({chunk.data(), 2});
  sink.Append({chunk.data() + 2, 2});
  sink.Append({chunk.data(), 4});
  EXPECT_EQ(sink.Received(), 8u);
  EXPECT_EQ(ToString(sink.Take()), "abc");
}

}  // namespace
