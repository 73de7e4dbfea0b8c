#include "bus/FrameReader.h"

#include <gmock/gmock.h>

namespace bus {
namespace {

const base::Bytes kUnplugFrame{8, 0, 0, 0, 4, 0x2A, 0, 0, 0, 1, 0, 'K'};

TEST(FrameReader, CutsAFrameOutOfAStreamInAnyPieces) {
  for (std::size_t piece = 1; piece <= kUnplugFrame.size(); ++piece) {
    FrameReader reader;
    std::vector<Frame> frames;
    for (int round = 0; round < 2; ++round) {
      for (std::size_t i = 0; i < kUnplugFrame.size(); i += piece) {
        reader.Feed(std::span(kUnplugFrame).subspan(i, std::min(piece, kUnplugFrame.size() - i)));
        while (auto frame = reader.Next()) frames.push_back(*frame);
      }
    }
    ASSERT_EQ(frames.size(), 2U) << piece;
    EXPECT_EQ(frames[1].kind, Kind::kUnplug);
    EXPECT_EQ(frames[1].tag, 42U);
    EXPECT_EQ(frames[1].payload, (base::Bytes{1, 0, 'K'}));
  }
}

TEST(FrameReader, TakesWhatCameIntoItsOwnMemory) {
  FrameReader reader;
  std::vector<Frame> frames;
  // Four and a half frames, in pieces that are larger and smaller than the rest of one.
  base::Bytes stream;
  for (int frame = 0; frame < 5; ++frame) stream.insert(stream.end(), kUnplugFrame.begin(), kUnplugFrame.end());
  stream.resize(stream.size() - kUnplugFrame.size() / 2);
  for (std::size_t at = 0, piece = 1; at < stream.size(); at += piece++) {
    const std::size_t count = std::min(piece, stream.size() - at);
    const std::span<std::uint8_t> room = reader.Room(100);
    ASSERT_EQ(room.size(), 100U);
    std::copy_n(stream.begin() + static_cast<std::ptrdiff_t>(at), count, room.begin());
    reader.Came(count);
    while (auto frame = reader.Next()) frames.push_back(*frame);
  }
  ASSERT_EQ(frames.size(), 4U);
  EXPECT_EQ(frames[3].payload, (base::Bytes{1, 0, 'K'}));
}

TEST(FrameReader, FindsSeveralFramesInOnePiece) {
  FrameReader reader;
  base::Bytes two = kUnplugFrame;
  two.insert(two.end(), kUnplugFrame.begin(), kUnplugFrame.end());
  reader.Feed(two);
  EXPECT_TRUE(reader.Next());
  EXPECT_TRUE(reader.Next());
  EXPECT_FALSE(reader.Next());
  EXPECT_FALSE(reader.Broken());
}

TEST(FrameReader, GivesUpOnALengthThatCannotBe) {
  for (const base::Bytes& bytes : {base::Bytes{4, 0, 0, 0, 1, 1, 1, 1}, base::Bytes{0, 0, 0, 0},
                                   base::Bytes{0xFF, 0xFF, 0xFF, 0xFF}, base::Bytes{1, 4, 0, 1}}) {
    FrameReader reader;
    reader.Feed(bytes);
    EXPECT_FALSE(reader.Next());
    EXPECT_TRUE(reader.Broken());
    reader.Feed(kUnplugFrame);
    EXPECT_FALSE(reader.Next());
  }
}

TEST(FrameReader, WaitsForTheRestOfALongFrame) {
  FrameReader reader;
  reader.Feed(base::Bytes{0, 4, 0, 1});  // 16 MiB and 1 KiB, the longest there is
  EXPECT_FALSE(reader.Next());
  EXPECT_FALSE(reader.Broken());
}

}  // namespace
}  // namespace bus
