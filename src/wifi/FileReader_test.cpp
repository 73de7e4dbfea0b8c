#include "FileReader.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "testing/FileCamera.h"
#include "testing/Reading.h"
#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using kelva::FileReader;
using Reason = kelva::FileReadError::Reason;
using Sent = std::vector<std::string>;
using namespace wifi_testing;

// The command blocks, byte by byte.

class FileReaderBlocks : public testing::Test {
 protected:
  FileReaderBlocks() { MakeCamera(65536); }
  void MakeCamera(int chunkSize) { camera_ = boost::make_shared<ScriptedCamera>(chunkSize); }
  void ExpectSelected(std::initializer_list<int> announced) {
    camera_->Expect({0xC2, 0x00, 0x01, 0x00}).Sends(Text(kPath));
    camera_->Expect({0xC6, 0x00, 0x00}).Asks(4).Answers(announced);
  }
  FileReader Reader() { return {camera_, kPath}; }

  boost::shared_ptr<ScriptedCamera> camera_;
};

TEST_F(FileReaderBlocks, SelectsTheFileAndAsksItsSize) {
  ExpectSelected({0xFE, 0xFF, 0xFF, 0xFF});
  const FileReader reader = Reader();
  EXPECT_EQ(reader.Size(), 4294967294U);
  EXPECT_EQ(reader.Position(), 0U);
  EXPECT_EQ(camera_->calls, (Calls{"IsOpen", "ClearCancel true", "Transfer true", "Transfer true"}));
}

TEST_F(FileReaderBlocks, ReadsForwardAsReadFileDoes) {
  const std::string file = Pattern(100000);
  ExpectSelected({0xA0, 0x86, 0x01, 0});
  FileReader reader = Reader();
  camera_->Expect({0xC4, 0x00, 0x01, 0, 0, 0, 0}).Asks(65536).Answers(file.substr(0, 65536));
  EXPECT_TRUE(ReadOn(reader, 65536) == file.substr(0, 65536));
  camera_->Expect({0xC4, 0x00, 0x01, 0, 0, 1, 0}).Asks(65536).Answers(file.substr(65536));
  EXPECT_TRUE(ReadOn(reader, 65536) == file.substr(65536));
  EXPECT_EQ(ReadOn(reader, 65536), "");
}

TEST_F(FileReaderBlocks, OfOneWholeChunkAsksOnceMoreWhetherThereIsMore) {
  ExpectSelected({0, 0, 1, 0});
  FileReader reader = Reader();
  camera_->Expect({0xC4, 0x00, 0x01, 0, 0, 0, 0}).Asks(65536).Answers(Pattern(65536));
  camera_->Expect({0xC4, 0x00, 0x01, 0, 0, 1, 0}).Asks(512).Answers("");
  EXPECT_TRUE(ReadOn(reader, 65536) == Pattern(65536));
}

TEST_F(FileReaderBlocks, OfNothingReadsNothing) {
  ExpectSelected({0, 0, 0, 0});
  FileReader reader = Reader();
  EXPECT_EQ(ReadOn(reader, 10), "");
  EXPECT_EQ(ReadAt(reader, 5, 10), "");
  EXPECT_TRUE(reader.ReadsForwardOnly());
}

TEST_F(FileReaderBlocks, OfAPictureFollowsTheNamingRule) {
  DcfObj picture{};
  std::strcpy(picture.directorySuffix, "ABCDE");
  std::strcpy(picture.filePrefix, "IMG_");
  picture.directoryNumber = 100;
  picture.fileNumber = 1;
  picture.hasJpg = 1;
  ExpectSelected({1, 0, 0, 0});
  EXPECT_EQ(FileReader(camera_, picture, 1).Size(), 1U);
  for (const bool throwing : {true, false}) {
    const ExceptionsOff mode(throwing);
    EXPECT_EQ(ReasonOf([&] { FileReader(camera_, picture, 2); }), Reason::kNoSuchType);
    EXPECT_EQ(Thrown([&] { FileReader(camera_, picture, 7); }),
              "CameraError: Camera error: ReadFile() file type 7 does not exist.");
  }
}

// All three: the chunk, the proof, and the read that was wanted.
TEST_F(FileReaderBlocks, AsksForTheProofBeforeTheFirstJump) {
  const std::string file = Pattern(70000);
  ExpectSelected({0x70, 0x11, 0x01, 0});
  FileReader reader = Reader();
  camera_->Expect({0xC4, 0x00, 0x01, 0, 0, 0, 0}).Asks(65536).Answers(file.substr(0, 65536));
  ExpectSelected({0x70, 0x11, 0x01, 0});
  camera_->Expect({0xC4, 0x00, 0x01, 0, 0, 0, 0}).Asks(512).Answers(file.substr(0, 512));
  camera_->Expect({0xC4, 0x00, 0x01, 0x00, 0xFC, 0, 0}).Asks(512).Answers(file.substr(64512, 512));
  camera_->Expect({0xC4, 0x00, 0x01, 0, 0, 0, 0}).Asks(512).Answers(file.substr(0, 512));
  camera_->Expect({0xC4, 0x00, 0x01, 0xE8, 0x03, 0, 0}).Asks(4).Answers(file.substr(1000, 4));
  EXPECT_EQ(ReadAt(reader, 1000, 4), file.substr(1000, 4));
  EXPECT_FALSE(reader.ReadsForwardOnly());
  // Known from now on, also to the next reader of this camera.
  ExpectSelected({0x70, 0x11, 0x01, 0});
  FileReader next = Reader();
  camera_->Expect({0xC4, 0x00, 0x01, 0x05, 0, 0, 0}).Asks(3).Answers("abc");
  EXPECT_EQ(ReadAt(next, 5, 3), "abc");
}

// The last byte of the largest files.
TEST_F(FileReaderBlocks, ReadsTheEndOfFourGibibytesWithoutWrapping) {
  const std::string start = Pattern(65536);
  for (const int last : {0xFE, 0xFF}) {
    MakeCamera(65536);
    ExpectSelected({last, 0xFF, 0xFF, 0xFF});
    FileReader reader = Reader();
    camera_->Expect({0xC4, 0x00, 0x01, 0}).Asks(65536).Answers(start);
    ExpectSelected({last, 0xFF, 0xFF, 0xFF});
    camera_->Expect({0xC4, 0x00, 0x01, 0}).Asks(512).Answers(start.substr(0, 512));
    camera_->Expect({0xC4, 0x00, 0x01, 0x00, 0xFC}).Asks(512).Answers(start.substr(64512, 512));
    camera_->Expect({0xC4, 0x00, 0x01, 0}).Asks(512).Answers(start.substr(0, 512));
    ASSERT_FALSE(reader.ReadsForwardOnly());
    camera_->Expect({0xC4, 0x00, 0x01, last - 1, 0xFF, 0xFF, 0xFF}).Asks(65536).Answers("a");
    EXPECT_EQ(ReadAt(reader, reader.Size() - 1, 65536), "a");
    EXPECT_EQ(reader.Position(), reader.Size());
    EXPECT_EQ(ReadOn(reader, 65536), "");
    EXPECT_EQ(ReadAt(reader, std::uint64_t{1} << 32, 10), "");
    EXPECT_EQ(ReadAt(reader, ~std::uint64_t{0}, 10), "");
  }
}

TEST_F(FileReaderBlocks, ChecksTheEndOfTheLargestFileAtTheLastOffset) {
  const std::string start = Pattern(65536);
  ExpectSelected({0xFF, 0xFF, 0xFF, 0xFF});
  FileReader reader = Reader();
  camera_->Expect({0xC4, 0x00, 0x01, 0}).Asks(65536).Answers(start);
  ExpectSelected({0xFF, 0xFF, 0xFF, 0xFF});
  camera_->Expect({0xC4, 0x00, 0x01, 0}).Asks(512).Answers(start.substr(0, 512));
  camera_->Expect({0xC4, 0x00, 0x01, 0x00, 0xFC}).Asks(512).Answers(start.substr(64512, 512));
  camera_->Expect({0xC4, 0x00, 0x01, 0}).Asks(512).Answers(start.substr(0, 512));
  camera_->Expect({0xC4, 0x00, 0x01, 0xFE, 0xFF, 0xFF, 0xFF}).Asks(1).Answers("a");
  camera_->Expect({0xC4, 0x00, 0x01, 0xFF, 0xFF, 0xFF, 0xFF}).Asks(512).Answers("X");
  EXPECT_EQ(ReadAt(reader, 4294967294U, 1), "a");
}

// Chunks of another size.

TEST_F(FileReaderBlocks, KeepsToTheChunksOfTheTransport) {
  MakeCamera(4);
  ExpectSelected({10, 0, 0, 0});
  FileReader reader = Reader();
  camera_->Expect({0xC4, 0x00, 0x01, 0}).Asks(4).Answers("abcd");
  camera_->Expect({0xC4, 0x00, 0x01, 4}).Asks(1).Answers("e");
  EXPECT_EQ(ReadOn(reader, 5), "abcde");
  camera_->Expect({0xC4, 0x00, 0x01, 5}).Asks(4).Answers("fghi");
  camera_->Expect({0xC4, 0x00, 0x01, 9}).Asks(4).Answers("j");
  EXPECT_EQ(ReadOn(reader, 100), "fghij");
}

TEST_F(FileReaderBlocks, ReadsTheChunkSizeAnewBeforeEachChunk) {
  MakeCamera(4);
  ExpectSelected({10, 0, 0, 0});
  FileReader reader = Reader();
  camera_->Expect({0xC4, 0x00, 0x01, 0}).Asks(4).Answers("abcd").Then([&] { camera_->chunkSize_ = 3; });
  camera_->Expect({0xC4, 0x00, 0x01, 4}).Asks(3).Answers("efg").Then([&] { camera_->chunkSize_ = 0; });
  EXPECT_EQ(ReasonOf([&] { ReadOn(reader, 100); }), Reason::kRefused);
  EXPECT_EQ(reader.Position(), 7U);
}

// The end of a file.

struct End {
  std::string file;
  std::size_t announced;
};

std::string ReadAllBy(const End& end, std::size_t piece, int chunkSize, bool forwardOnly) {
  const auto camera = boost::make_shared<FileCamera>(end.file, chunkSize);
  camera->announced = end.announced;
  camera->forwardOnly = forwardOnly;
  FileReader reader(camera, kPath);
  std::string all;
  while (true) {
    const std::string more = ReadOn(reader, piece);
    if (more.empty()) return all;
    all += more;
  }
}

TEST(FileReaderEnd, OneSurplusByteIsCutOffAndTwoAreAnErrorInPiecesOfAnySize) {
  const std::string file = Pattern(48);
  for (const bool throwing : {true, false}) {
    const ExceptionsOff mode(throwing);
    for (const bool forwardOnly : {false, true}) {
      for (const int chunkSize : {1, 2, 3, 4, 16, 47, 48, 49, 50, 65536}) {
        for (const std::size_t piece : {1U, 2U, 3U, 15U, 16U, 46U, 47U, 48U, 49U, 50U, 51U, 1000U}) {
          const auto read = [&](std::size_t announced) {
            return ReadAllBy({file, announced}, piece, chunkSize, forwardOnly);
          };
          EXPECT_EQ(read(48), file) << chunkSize << " " << piece;
          EXPECT_EQ(read(47), file.substr(0, 47)) << chunkSize << " " << piece;
          EXPECT_EQ(ReasonOf([&] { read(46); }), Reason::kSurplus) << chunkSize << " " << piece;
          EXPECT_EQ(ReasonOf([&] { read(45); }), Reason::kSurplus) << chunkSize << " " << piece;
          EXPECT_EQ(ReasonOf([&] { read(49); }), Reason::kTruncated) << chunkSize << " " << piece;
        }
      }
    }
  }
}

TEST(FileReaderEnd, AReadInTheMiddleDoesNotSeeTheSurplus) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(100));
  camera->announced = 90;
  FileReader reader(camera, kPath);
  EXPECT_EQ(ReadOn(reader, 89).size(), 89U);
  EXPECT_EQ(camera->sent, (Sent{"select", "size", "read 89 at 0"}));
  EXPECT_EQ(ReasonOf([&] { ReadOn(reader, 1); }), Reason::kSurplus);
}

TEST(FileReaderEnd, IsCheckedOnceASelection) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(5000));
  FileReader reader(camera, kPath);
  ASSERT_FALSE(reader.ReadsForwardOnly());
  camera->TakeSent();
  ReadAt(reader, 4990, 10);
  ReadAt(reader, 4980, 20);
  reader.Select();
  ReadAt(reader, 4990, 10);
  EXPECT_EQ(camera->sent, (Sent{"read 10 at 4990", "read 512 at 5000", "read 20 at 4980", "select", "size",
                                "read 10 at 4990", "read 512 at 5000"}));
}

TEST(FileReaderEnd, RoomForTwoBytesMoreSavesTheCheck) {
  for (const std::size_t room : {0U, 1U, 2U}) {
    const auto camera = boost::make_shared<FileCamera>(Pattern(10));
    FileReader reader(camera, kPath);
    EXPECT_EQ(ReadOn(reader, 10 + room), Pattern(10));
    camera->sent.erase(camera->sent.begin(), camera->sent.begin() + 2);
    EXPECT_EQ(camera->sent, room < 2 ? (Sent{"read 10 at 0", "read 512 at 10"}) : Sent{"read 12 at 0"});
  }
}

TEST(FileReaderEnd, ACameraMayClaimTheSurplusByteBeyondWhatWasAskedFor) {
  for (const int claimed : {9, 10, 11, 12}) {
    const auto camera = boost::make_shared<ScriptedCamera>();
    camera->Expect({0xC2, 0x00, 0x01}).Sends(Text("x"));
    camera->Expect({0xC6}).Asks(4).Answers({10, 0, 0, 0});
    FileReader reader(camera, "x");
    camera->Expect({0xC4, 0x00, 0x01}).Asks(10).Answers(Pattern(10)).Moves(claimed);
    if (claimed == 10) camera->Expect({0xC4, 0x00, 0x01, 10}).Asks(512).Answers("");
    const auto reason = ReasonOf([&] { EXPECT_EQ(ReadOn(reader, 10), Pattern(10)); });
    EXPECT_EQ(reason, claimed < 10   ? std::optional(Reason::kTruncated)
                      : claimed > 11 ? std::optional(Reason::kSurplus)
                                     : std::nullopt);
  }
}

TEST(FileReaderEnd, AClaimBeyondWhatWasAskedForInTheMiddleIsAnError) {
  for (const int claimed : {5, 6, 7, 8, 2147483647}) {
    const auto camera = boost::make_shared<ScriptedCamera>(4);
    camera->Expect({0xC2, 0x00, 0x01}).Sends(Text("x"));
    camera->Expect({0xC6}).Asks(4).Answers({6, 0, 0, 0});
    FileReader reader(camera, "x");
    camera->Expect({0xC4, 0x00, 0x01}).Asks(4).Answers("abcd").Moves(claimed);
    EXPECT_EQ(ReasonOf([&] { ReadOn(reader, 4); }), Reason::kSurplus);
    EXPECT_EQ(reader.Position(), 0U);
  }
}

TEST(FileReaderEnd, ANegativeCountIsNothing) {
  const auto camera = boost::make_shared<ScriptedCamera>(4);
  camera->Expect({0xC2, 0x00, 0x01}).Sends(Text("x"));
  camera->Expect({0xC6}).Asks(4).Answers({6, 0, 0, 0});
  FileReader reader(camera, "x");
  camera->Expect({0xC4, 0x00, 0x01}).Asks(4).Moves(-4);
  EXPECT_EQ(ReasonOf([&] { ReadOn(reader, 6); }), Reason::kTruncated);
}

}  // namespace
