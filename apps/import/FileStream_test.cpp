#include "apps/import/FileStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <thread>

namespace apps {
namespace {

using What = FileStream::What;

void Put(FileStream& stream, std::string_view text, What what = What::kWrite) {
  const std::span<char> room = stream.Room();
  ASSERT_GE(room.size(), text.size());
  std::copy(text.begin(), text.end(), room.begin());
  stream.Put(what, text.size());
}

std::string TextOf(const FileStream::Piece& piece) {
  return {piece.bytes.begin(), piece.bytes.end()};
}

TEST(FileStreamTest, PiecesComeInOrderAndTheEndIsTheLast) {
  FileStream stream;
  Put(stream, "one");
  Put(stream, "two", What::kCompare);
  stream.End(What::kStore, true);
  FileStream::Piece piece = stream.Next();
  EXPECT_EQ(piece.what, What::kWrite);
  EXPECT_EQ(TextOf(piece), "one");
  piece = stream.Next();
  EXPECT_EQ(piece.what, What::kCompare);
  EXPECT_EQ(TextOf(piece), "two");
  piece = stream.Next();
  EXPECT_EQ(piece.what, What::kStore);
  EXPECT_TRUE(piece.verified);
}

TEST(FileStreamTest, APieceHasRoomForTheTwoBytesThatTellTheEndOfAFile) {
  FileStream stream;
  EXPECT_EQ(stream.Room().size(), FileStream::kPiece + 2);
}

TEST(FileStreamTest, RoomThatIsNotUsedIsGivenAgain) {
  FileStream stream;
  const char* const first = stream.Room().data();
  EXPECT_EQ(stream.Room().data(), first);
}

TEST(FileStreamTest, EightPiecesAreOnTheirWayAtMost) {
  FileStream stream;
  for (std::size_t i = 0; i < FileStream::kMostPieces; ++i) Put(stream, "x");
  stream.Next();  // the writer has one, which is still on its way
  std::thread writer([&stream] { stream.Next(); });
  EXPECT_FALSE(stream.Room().empty()) << "waits until the first one is written";
  writer.join();
}

TEST(FileStreamTest, TheReaderIsToldWhatTheFileHashesToAndWhetherItCameAsBefore) {
  FileStream stream;
  std::thread writer([&stream] {
    stream.PutSha1("abc");
    stream.PutEqual(false);
  });
  EXPECT_EQ(stream.Sha1(), "abc");
  EXPECT_EQ(stream.IsEqual(), false);
  writer.join();
}

TEST(FileStreamTest, AReaderWhoseWriterHasGivenUpWaitsForNothing) {
  FileStream stream;
  for (std::size_t i = 0; i < FileStream::kMostPieces; ++i) Put(stream, "x");
  std::thread writer([&stream] { stream.GiveUp(); });
  EXPECT_TRUE(stream.Room().empty());
  EXPECT_FALSE(stream.Sha1());
  EXPECT_FALSE(stream.IsEqual());
  writer.join();
}

}  // namespace
}  // namespace apps
