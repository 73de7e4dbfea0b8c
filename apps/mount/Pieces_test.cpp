#include "apps/mount/Pieces.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace apps {
namespace {

using namespace std::chrono_literals;

Pieces::Piece Of(char content) {
  auto bytes = std::make_shared<FileBytes>(1);
  bytes->All()[0] = content;
  return bytes;
}

TEST(PiecesTest, ThePieceThatWasAskedForLongestAgoGoesFirst) {
  Pieces pieces(2);
  pieces.Keep(1, 0, Of('a'));
  pieces.Keep(1, 1, Of('b'));
  EXPECT_NE(pieces.Find(1, 0), nullptr);
  pieces.Keep(2, 0, Of('c'));
  EXPECT_EQ(pieces.Find(1, 1), nullptr);
  EXPECT_NE(pieces.Find(1, 0), nullptr);
  EXPECT_NE(pieces.Find(2, 0), nullptr);
}

TEST(PiecesTest, AnOldPieceIsNotUsed) {
  Pieces pieces;
  const auto now = Pieces::Clock::now();
  pieces.Keep(1, 0, Of('a'), now);
  EXPECT_NE(pieces.Find(1, 0, now + 2s), nullptr);
  EXPECT_EQ(pieces.Find(1, 0, now + 2001ms), nullptr);
}

TEST(PiecesTest, AChangedFileLosesItsPiecesAlone) {
  Pieces pieces;
  for (const std::uint64_t file : {1U, 2U, 3U}) pieces.Keep(file, 7, Of('a'));
  pieces.Drop(2);
  EXPECT_NE(pieces.Find(1, 7), nullptr);
  EXPECT_EQ(pieces.Find(2, 7), nullptr);
  EXPECT_NE(pieces.Find(3, 7), nullptr);
}

TEST(PiecesTest, BytesCanBeCut) {
  FileBytes bytes(3);
  std::copy_n("abc", 3, bytes.All().begin());
  bytes.Cut(2);
  EXPECT_EQ(bytes.Text(), "ab");
}

TEST(PiecesTest, APieceThatIsReadAgainTakesThePlaceOfTheFirst) {
  Pieces pieces;
  pieces.Keep(1, 0, Of('a'));
  pieces.Keep(1, 0, Of('b'));
  EXPECT_EQ(pieces.Find(1, 0)->Text(), "b");
}

}  // namespace
}  // namespace apps
