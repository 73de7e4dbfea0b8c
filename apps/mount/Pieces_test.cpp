#include "apps/mount/Pieces.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

using namespace std::chrono_literals;

Pieces::Piece Bytes(const char* text) {
  return std::make_shared<const std::vector<char>>(text, text + 1);
}

TEST(PiecesTest, ThePieceThatWasAskedForLongestAgoGoesFirst) {
  Pieces pieces(2);
  pieces.Keep(1, 0, Bytes("a"));
  pieces.Keep(1, 1, Bytes("b"));
  EXPECT_NE(pieces.Find(1, 0), nullptr);
  pieces.Keep(2, 0, Bytes("c"));
  EXPECT_EQ(pieces.Find(1, 1), nullptr);
  EXPECT_NE(pieces.Find(1, 0), nullptr);
  EXPECT_NE(pieces.Find(2, 0), nullptr);
}

TEST(PiecesTest, AnOldPieceIsNotUsed) {
  Pieces pieces;
  const auto now = Pieces::Clock::now();
  pieces.Keep(1, 0, Bytes("a"), now);
  EXPECT_NE(pieces.Find(1, 0, now + 2s), nullptr);
  EXPECT_EQ(pieces.Find(1, 0, now + 2001ms), nullptr);
}

TEST(PiecesTest, AChangedFileLosesItsPiecesAlone) {
  Pieces pieces;
  for (const std::uint64_t file : {1U, 2U, 3U}) pieces.Keep(file, 7, Bytes("a"));
  pieces.Drop(2);
  EXPECT_NE(pieces.Find(1, 7), nullptr);
  EXPECT_EQ(pieces.Find(2, 7), nullptr);
  EXPECT_NE(pieces.Find(3, 7), nullptr);
}

TEST(PiecesTest, APieceThatIsReadAgainTakesThePlaceOfTheFirst) {
  Pieces pieces;
  pieces.Keep(1, 0, Bytes("a"));
  pieces.Keep(1, 0, Bytes("b"));
  EXPECT_EQ(pieces.Find(1, 0)->at(0), 'b');
}

}  // namespace
}  // namespace apps
