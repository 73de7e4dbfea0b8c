#include "FileReader.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <boost/weak_ptr.hpp>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "testing/FaultSweep.h"
#include "testing/FileCamera.h"
#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using kelva::FileReader;
using kelva::FileReadError;
using Reason = FileReadError::Reason;
using Sent = std::vector<std::string>;
using namespace wifi_testing;

constexpr char kPath[] = "I:\\DCIM\\100ABCDE\\IMG_0001.JPG";

std::string ReadOn(FileReader& reader, std::size_t count) {
  std::vector<char> piece(count);
  piece.resize(reader.ReadOn(piece));
  return ToString(piece);
}

std::string ReadAt(FileReader& reader, std::uint64_t offset, std::size_t count) {
  std::vector<char> piece(count);
  piece.resize(reader.Read(offset, piece));
  return ToString(piece);
}

/// The reason of the FileReadError that `command` throws.
template <typename Command>
std::optional<Reason> ReasonOf(Command command) {
  try {
    command();
  } catch (const FileReadError& error) {
    return error.Why();
  }
  return std::nullopt;
}

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

// Any part of a file.

class FileReaderOrder : public testing::Test {
 protected:
  boost::shared_ptr<FileCamera> Make(std::string file, bool forwardOnly) {
    const auto camera = boost::make_shared<FileCamera>(std::move(file));
    camera->forwardOnly = forwardOnly;
    return camera;
  }
};

TEST_F(FileReaderOrder, AnyPartIsRightOnEveryKindOfCamera) {
  for (const bool forwardOnly : {false, true}) {
    for (const bool refusesJumps : {false, true}) {
      const auto camera = Make(Pattern(200000), forwardOnly);
      camera->refusesJumps = refusesJumps;
      FileReader reader(camera, kPath);
      for (const std::size_t offset : {150000U, 0U, 199999U, 131072U, 131080U, 7U, 65535U, 1U}) {
        EXPECT_EQ(ReadAt(reader, offset, 8), camera->file.substr(offset, 8)) << offset;
        EXPECT_EQ(ReadOn(reader, 5), camera->file.substr(std::min<std::size_t>(offset + 8, 200000), 5));
      }
      EXPECT_EQ(reader.ReadsForwardOnly(), forwardOnly || refusesJumps);
    }
  }
}

TEST_F(FileReaderOrder, ReadingForwardAsksForNoProof) {
  const auto camera = Make(Pattern(200000), false);
  FileReader reader(camera, kPath);
  while (!ReadOn(reader, 65536).empty()) {
  }
  EXPECT_EQ(camera->sent, (Sent{"select", "size", "read 65536 at 0", "read 65536 at 65536", "read 65536 at 131072",
                                "read 65536 at 196608"}));
}

TEST_F(FileReaderOrder, GoingBackToTheStartAsksForNoProof) {
  const auto camera = Make(Pattern(3000), false);
  FileReader reader(camera, kPath);
  ReadOn(reader, 2000);
  EXPECT_EQ(ReadAt(reader, 0, 10), Pattern(10));
  EXPECT_EQ(camera->sent, (Sent{"select", "size", "read 2000 at 0", "select", "size", "read 10 at 0"}));
}

TEST_F(FileReaderOrder, ACameraThatIgnoresOffsetsIsReadForwardFromThenOn) {
  const auto camera = Make(Pattern(200000), true);
  FileReader reader(camera, kPath);
  ReadOn(reader, 100);
  camera->TakeSent();
  EXPECT_EQ(ReadAt(reader, 70000, 10), camera->file.substr(70000, 10));
  EXPECT_EQ(camera->TakeSent(),
            (Sent{"select", "size", "read 65536 at 0", "select", "size", "read 512 at 0", "read 512 at 64512", "select",
                  "size", "read 65536 at 0", "read 4464 at 65536", "read 10 at 70000"}));
  EXPECT_EQ(ReadAt(reader, 70020, 10), camera->file.substr(70020, 10));
  EXPECT_EQ(camera->TakeSent(), (Sent{"read 10 at 70010", "read 10 at 70020"}));
  EXPECT_EQ(ReadAt(reader, 3, 10), camera->file.substr(3, 10));
  EXPECT_EQ(camera->TakeSent(), (Sent{"select", "size", "read 3 at 0", "read 10 at 3"}));
}

TEST_F(FileReaderOrder, ACameraThatOnlyJumpsForwardHasNotProvedIt) {
  class OneWay : public FileCamera {
   public:
    using FileCamera::FileCamera;
    bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool flag) override {
      const int offset = cdb.bytes[3] | cdb.bytes[4] << 8;
      if (cdb.bytes[0] == 0xC2) farthest_ = 0;
      forwardOnly = cdb.bytes[0] == 0xC4 && offset < farthest_;
      if (cdb.bytes[0] == 0xC4) farthest_ = std::max(farthest_, offset);
      return FileCamera::Transfer(cdb, direction, size, buffer, flag);
    }

   private:
    int farthest_ = 0;
  };
  const auto camera = boost::make_shared<OneWay>(Pattern(60000));
  FileReader reader(camera, kPath);
  EXPECT_TRUE(reader.ReadsForwardOnly());
  EXPECT_EQ(ReadAt(reader, 40000, 8), camera->file.substr(40000, 8));
}

TEST_F(FileReaderOrder, AFileThatProvesNothingLeavesTheQuestionOpen) {
  const auto camera = Make(std::string(3000, '\0') + "end", false);
  FileReader zeros(camera, kPath);
  EXPECT_TRUE(zeros.ReadsForwardOnly());
  EXPECT_EQ(ReadAt(zeros, 3000, 10), "end");
  camera->TakeSent();
  EXPECT_TRUE(zeros.ReadsForwardOnly());
  EXPECT_EQ(camera->sent, Sent{}) << "asked once a reader";
  camera->file = Pattern(3003);
  EXPECT_FALSE(FileReader(camera, kPath).ReadsForwardOnly());
}

// At each of the three reads of the proof.
TEST_F(FileReaderOrder, AnErrorDuringTheProofLeavesTheQuestionOpenForTheNextReader) {
  for (const int throwsAt : {5, 6, 7}) {
    const auto camera = Make(Pattern(3000), false);
    camera->throwsAt = throwsAt;
    FileReader reader(camera, kPath);
    EXPECT_TRUE(reader.ReadsForwardOnly());
    EXPECT_EQ(camera->sent.at(static_cast<std::size_t>(throwsAt)).substr(0, 8), "read 512");
    EXPECT_EQ(ReadAt(reader, 1000, 5), Pattern(3000).substr(1000, 5));
    camera->TakeSent();
    camera->throwsAt = -1;
    EXPECT_TRUE(reader.ReadsForwardOnly());
    EXPECT_EQ(camera->sent, Sent{}) << "asked once a reader";
    EXPECT_FALSE(FileReader(camera, kPath).ReadsForwardOnly());
  }
}

TEST_F(FileReaderOrder, ATransportOfTinyChunksIsReadForwardOnly) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(3000), 511);
  FileReader reader(camera, kPath);
  EXPECT_TRUE(reader.ReadsForwardOnly());
  EXPECT_EQ(ReadAt(reader, 2000, 5), camera->file.substr(2000, 5));
}

TEST_F(FileReaderOrder, SmallChunksAreGatheredForTheProof) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(3000), 512);
  FileReader reader(camera, kPath);
  EXPECT_FALSE(reader.ReadsForwardOnly());
}

// What ends a selection, and taking the file up again.

TEST(FileReaderSelect, TakesTheFileUpWhereTheLastReadEnded) {
  for (const bool forwardOnly : {false, true}) {
    const auto camera = boost::make_shared<FileCamera>(Pattern(5000));
    camera->forwardOnly = forwardOnly;
    FileReader reader(camera, kPath);
    ReadOn(reader, 1000);
    reader.Select();
    EXPECT_EQ(reader.Position(), 1000U);
    EXPECT_EQ(ReadOn(reader, 10), camera->file.substr(1000, 10));
  }
}

TEST(FileReaderSelect, OfAFileOfAnotherSizeIsAnErrorThatStays) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(50));
  FileReader reader(camera, kPath);
  camera->file += "more";
  EXPECT_EQ(ReasonOf([&] { reader.Select(); }), Reason::kSizeChanged);
  EXPECT_EQ(ReasonOf([&] { ReadOn(reader, 5); }), Reason::kNotSelected);
  EXPECT_EQ(Thrown([&] { reader.Select(); }),
            "CameraError: Camera error: FileReader: the file has 54 bytes now, and had 50.");
  EXPECT_EQ(reader.Size(), 50U);
}

TEST(FileReaderSelect, IsNeededAfterAnError) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(50), 10);
  FileReader reader(camera, kPath);
  camera->throwsAt = 4;
  std::vector<char> piece(50);
  EXPECT_EQ(Thrown([&] { reader.ReadOn(piece); }), "CameraTransferError: Camera error: cut");
  EXPECT_EQ(reader.Position(), 20U);
  EXPECT_EQ(ToString(piece).substr(0, 20), Pattern(20));
  EXPECT_EQ(ReasonOf([&] { ReadOn(reader, 5); }), Reason::kNotSelected);
  EXPECT_EQ(ReasonOf([&] { reader.ReadsForwardOnly(); }), Reason::kNotSelected);
  reader.Select();
  EXPECT_EQ(ReadAt(reader, 20, 30), Pattern(50).substr(20));
}

TEST(FileReaderSelect, AClosedCameraIsAskedNothing) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(50));
  FileReader reader(camera, kPath);
  camera->Close();
  camera->TakeSent();
  EXPECT_EQ(ReasonOf([&] { ReadOn(reader, 5); }), Reason::kNotOpen);
  EXPECT_EQ(ReasonOf([&] { reader.Select(); }), Reason::kNotOpen);
  EXPECT_EQ(ReasonOf([&] { FileReader(camera, kPath); }), Reason::kNotOpen);
  EXPECT_EQ(camera->sent, Sent{});
}

TEST(FileReaderSelect, AfterTheLossEveryCallThrows) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(50));
  FileReader reader(camera, kPath);
  camera->lost = true;
  camera->TakeSent();
  EXPECT_EQ(ReasonOf([&] { ReadOn(reader, 5); }), Reason::kCameraLost);
  EXPECT_EQ(ReasonOf([&] { ReadAt(reader, 7, 5); }), Reason::kCameraLost);
  EXPECT_EQ(ReasonOf([&] { reader.Select(); }), Reason::kCameraLost);
  EXPECT_EQ(ReasonOf([&] { reader.ReadsForwardOnly(); }), Reason::kCameraLost);
  EXPECT_EQ(camera->sent, Sent{});
  EXPECT_EQ(reader.Size(), 50U);
}

TEST(FileReaderSelect, AReaderCanBeMoved) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(50));
  FileReader reader(camera, kPath);
  ReadOn(reader, 5);
  FileReader moved = std::move(reader);
  EXPECT_EQ(ReadOn(moved, 5), Pattern(50).substr(5, 5));
}

TEST(FileReaderSelect, TheReaderHoldsItsCamera) {
  boost::shared_ptr<FileCamera> camera = boost::make_shared<FileCamera>(Pattern(50));
  FileReader reader(camera, kPath);
  const boost::weak_ptr<FileCamera> watched = camera;
  camera.reset();
  EXPECT_EQ(ReadOn(reader, 5), Pattern(5));
  EXPECT_FALSE(watched.expired());
}

// Thrown, false, one byte less, one byte more: at each transfer of a file that has two chunks and is read in two pieces.
TEST(FileReaderFaults, EveryFaultHasItsOutcome) {
  const auto run = [](Camera& camera) {
    FileReader reader({&camera, [](Camera*) {}}, "x");
    std::string text = ReadOn(reader, 8);
    text += ReadOn(reader, 8);
    reader.Select();
    return text;
  };
  const Step path = Step({0xC2, 0, 1}).Sends(Text("x"));
  const Step size = Step({0xC6, 0, 0}).Asks(4).Answers({10, 0, 0, 0});
  RunSweep(
      {"FileReader",
       8,
       {path, size, Step({0xC4, 0, 1, 0}).Asks(8).Answers("abcdefgh"), Step({0xC4, 0, 1, 8}).Asks(8).Answers("ij"),
        path, size},
       run,
       "6 abcdefghij",
       {{"1 cut", "1 FileReader: the camera refused to select the file.", "6 abcdefghij", "6 abcdefghij"},
        {"2 cut", "2 FileReader: the camera refused to select the file.", "6 abcdefghij", "6 abcdefghij"},
        {"3 cut", "3 FileReader: the camera refused a read at 0.", "3 FileReader: the file ended after 7 of 10 bytes.",
         "3 FileReader: more came than the 10 bytes that the camera announced."},
        {"4 cut", "4 FileReader: the camera refused a read at 8.", "4 FileReader: the file ended after 9 of 10 bytes.",
         "6 abcdefghij"},
        {"5 cut", "5 FileReader: the camera refused to select the file.", "6 abcdefghij", "6 abcdefghij"},
        {"6 cut", "6 FileReader: the camera refused to select the file.", "6 abcdefghij", "6 abcdefghij"}}});
}

// Every transfer of every sequence fails once: the outcome is an error of a type, or right bytes.
TEST(FileReaderFaults, AtEachTransferEndInAnErrorOrInRightBytes) {
  for (const bool throwing : {true, false}) {
    const ExceptionsOff mode(throwing);
    for (const bool forwardOnly : {false, true}) {
      const auto read = [&](int throwsAt, std::string& got) {
        const auto camera = boost::make_shared<FileCamera>(Pattern(70000));
        camera->forwardOnly = forwardOnly;
        camera->throwsAt = throwsAt;
        FileReader reader(camera, kPath);
        got = ReadAt(reader, 69000, 10);
        got += ReadOn(reader, 990);
        got += ReadAt(reader, 5, 5);
        return static_cast<int>(camera->sent.size());
      };
      std::string right;
      const int transfers = read(-1, right);
      EXPECT_TRUE(right == Pattern(70000).substr(69000) + Pattern(10).substr(5));
      for (int at = 0; at < transfers; ++at) {
        std::string got;
        const std::string error = Thrown([&] { read(at, got); });
        EXPECT_TRUE(error.empty() ? got == right : error == "CameraTransferError: Camera error: cut") << at;
      }
    }
  }
}

}  // namespace
