#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

constexpr char kPath[] = "I:\\DCIM\\100ABCDE\\IMG_0001.JPG";
constexpr char kTruncated[] = "CameraError: Camera error: ReadFile() truncated.";

class ReadFile : public testing::Test {
 protected:
  explicit ReadFile(int chunkSize = 65536, int progressInterval = 262144) : camera_(chunkSize, progressInterval) {}

  void ExpectOpened(std::initializer_list<int> announced) {
    camera_.Expect({0xC2, 0x00, 0x01, 0x00}).Sends(Text(kPath));
    camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers(announced);
  }
  std::string Read() { return ToString(camera_.ReadFile(kPath, Progress::Report, &progress_, true)); }

  ScriptedCamera camera_;
  Progress progress_;
};

TEST_F(ReadFile, SelectsAsksTheSizeAndReadsUntilAShortChunk) {
  ExpectOpened({3, 0, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x01, 0, 0, 0, 0}).Asks(65536).Answers("abc");
  EXPECT_EQ(Read(), "abc");
  EXPECT_EQ(camera_.calls, (Calls{"IsOpen", "ClearCancel true", "Transfer true", "Transfer true", "Transfer true"}));
}

TEST_F(ReadFile, TouchesNothingOnAClosedCamera) {
  camera_.open = false;
  EXPECT_EQ(Read(), "");
  EXPECT_EQ(camera_.calls, Calls{"IsOpen"});
}

TEST_F(ReadFile, PassesItsFlagToEveryCall) {
  camera_.Expect({0xC2, 0x00, 0x01}).Sends(Text("x")).Flag(false);
  camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({1, 0, 0, 0}).Flag(false);
  camera_.Expect({0xC4, 0x00, 0x01}).Asks(65536).Answers("a").Flag(false);
  EXPECT_EQ(ToString(camera_.ReadFile("x", nullptr, nullptr, false)), "a");
  EXPECT_EQ(camera_.calls[1], "ClearCancel false");
}

TEST_F(ReadFile, SendsAnyPathAsItStands) {
  camera_.Expect({0xC2, 0x00, 0x01}).Sends(Bytes({'/', '.', '.', '\\', '\\', 0x8E, 0xFF, 0})).Fails();
  EXPECT_TRUE(camera_.ReadFile("/..\\\\\x8E\xFF", nullptr, nullptr, true).empty());
  camera_.Expect({0xC2, 0x00, 0x01}).Sends(Bytes({0})).Fails();
  EXPECT_TRUE(camera_.ReadFile("", nullptr, nullptr, true).empty());
}

TEST_F(ReadFile, OfAnnouncedZeroBytesReadsNothing) {
  ExpectOpened({0, 0, 0, 0});
  EXPECT_EQ(Read(), "");
  EXPECT_TRUE(progress_.fractions.empty());
}

TEST_F(ReadFile, OfOneWholeChunkCostsAFurtherEmptyRead) {
  ExpectOpened({0, 0, 1, 0});
  camera_.Expect({0xC4, 0x00, 0x01, 0, 0, 0, 0}).Asks(65536).Answers(Pattern(65536));
  camera_.Expect({0xC4, 0x00, 0x01, 0, 0, 1, 0}).Asks(65536).Answers("");
  EXPECT_TRUE(Read() == Pattern(65536));
}

TEST_F(ReadFile, OfAHundredThousandBytesTakesTwoChunksAndOneReport) {
  const std::string file = Pattern(100000);
  ExpectOpened({0xA0, 0x86, 0x01, 0});
  camera_.Expect({0xC4, 0x00, 0x01, 0, 0, 0, 0}).Asks(65536).Answers(file.substr(0, 65536));
  camera_.Expect({0xC4, 0x00, 0x01, 0, 0, 1, 0}).Asks(65536).Answers(file.substr(65536, 34464));
  EXPECT_TRUE(Read() == file);
  EXPECT_EQ(progress_.fractions, std::vector<float>{0.0f});
}

TEST_F(ReadFile, OfAMillionBytesReportsBeforeEveryFourthChunk) {
  const std::string file = Pattern(1000000);
  ExpectOpened({0x40, 0x42, 0x0F, 0});
  for (int chunk = 0; chunk < 16; ++chunk) {
    camera_.Expect({0xC4, 0x00, 0x01, 0, 0, chunk, 0})
        .Asks(65536)
        .Answers(file.substr(static_cast<std::size_t>(chunk) * 65536, 65536));
  }
  EXPECT_TRUE(Read() == file);
  EXPECT_EQ(progress_.fractions, (std::vector<float>{0.0f, 0.262144f, 0.524288f, 0.786432f}));
}

TEST_F(ReadFile, ReportsBeforeTheChunkIsTransferred) {
  std::size_t reportsAtTransfer = 0;
  ExpectOpened({1, 0, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x01}).Asks(65536).Answers("a").Then([&] {
    reportsAtTransfer = progress_.fractions.size();
  });
  EXPECT_EQ(Read(), "a");
  EXPECT_EQ(reportsAtTransfer, 1u);
}

TEST_F(ReadFile, CutsOneSurplusByteOff) {
  ExpectOpened({3, 0, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x01}).Asks(65536).Answers("abcX");
  EXPECT_EQ(Read(), "abc");
}

TEST_F(ReadFile, TwoSurplusBytesStopTheProcess) {
  ExpectOpened({3, 0, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x01}).Asks(65536).Answers("abcXY");
  EXPECT_FATAL(Read(), "data.size() - 1 == fileSize", "ReadFile");
  camera_.ForgetTheRest();
}

TEST_F(ReadFile, TheAssertionHoldsWithExceptionsOffToo) {
  const ExceptionsOff off;
  ExpectOpened({3, 0, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x01}).Asks(65536).Answers("abcXY");
  EXPECT_FATAL(Read(), "data.size() - 1 == fileSize", "ReadFile");
  camera_.ForgetTheRest();
}

TEST_F(ReadFile, OfFewerBytesThanAnnouncedIsTruncated) {
  ExpectOpened({4, 0, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x01}).Asks(65536).Answers("abc");
  EXPECT_EQ(Thrown([&] { Read(); }), kTruncated);
  const ExceptionsOff off;
  ExpectOpened({4, 0, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x01}).Asks(65536).Answers("abc");
  EXPECT_EQ(Read(), "");
}

TEST_F(ReadFile, TakesTheSizeAsAnUnsignedNumber) {
  ExpectOpened({0xFF, 0xFF, 0xFF, 0xFF});
  camera_.Expect({0xC4, 0x00, 0x01}).Asks(65536).Answers("abc");
  EXPECT_EQ(Thrown([&] { Read(); }), kTruncated);
}

TEST_F(ReadFile, TakesTheMissingBytesOfAShortSizeAsZero) {
  camera_.Expect({0xC2, 0x00, 0x01}).Sends(Text(kPath));
  camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({3});
  camera_.Expect({0xC4, 0x00, 0x01}).Asks(65536).Answers("abc");
  EXPECT_EQ(Read(), "abc");
}

TEST_F(ReadFile, OfWhichACommandFailsIsEmptyWithoutException) {
  camera_.Expect({0xC2, 0x00, 0x01}).Sends(Text(kPath)).Fails();
  EXPECT_EQ(Read(), "");
  camera_.Expect({0xC2, 0x00, 0x01}).Sends(Text(kPath));
  camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({3, 0, 0, 0}).ReturnsFalse();
  EXPECT_EQ(Read(), "");
  ExpectOpened({3, 0, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x01}).Asks(65536).Answers("abc").ReturnsFalse();
  EXPECT_EQ(Read(), "");
}

TEST_F(ReadFile, PassesATransferErrorOnWhateverTheSwitchSays) {
  const ExceptionsOff off;
  ExpectOpened({3, 0, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x01}).Asks(65536).Throws("gone");
  EXPECT_EQ(Thrown([&] { Read(); }), "CameraTransferError: Camera error: gone");
}

// Small chunks, so that what happens between them is seen.
class ReadFileInSmallChunks : public ReadFile {
 protected:
  ReadFileInSmallChunks() : ReadFile(4, 8) {}
  Step& ExpectChunk(int offset) { return camera_.Expect({0xC4, 0x00, 0x01, offset}).Asks(4); }
};

TEST_F(ReadFileInSmallChunks, AFailedLaterChunkDropsEverything) {
  ExpectOpened({6, 0, 0, 0});
  ExpectChunk(0).Answers("abcd");
  ExpectChunk(4).Answers("ef").ReturnsFalse();
  EXPECT_EQ(Read(), "");
}

TEST_F(ReadFileInSmallChunks, ASurplusByteMayComeAsAChunkOfItsOwn) {
  ExpectOpened({4, 0, 0, 0});
  ExpectChunk(0).Answers("abcd");
  ExpectChunk(4).Answers("X");
  EXPECT_EQ(Read(), "abcd");
}

TEST_F(ReadFileInSmallChunks, ACountBeyondTheChunkIsClampedAndEndsTheRead) {
  ExpectOpened({4, 0, 0, 0});
  ExpectChunk(0).Answers("abcd").Moves(5);
  EXPECT_EQ(Read(), "abcd");
}

TEST_F(ReadFileInSmallChunks, ANegativeCountIsAnEmptyChunk) {
  ExpectOpened({4, 0, 0, 0});
  ExpectChunk(0).Answers("abcd");
  ExpectChunk(4).Moves(-4);
  EXPECT_EQ(Read(), "abcd");
}

TEST_F(ReadFileInSmallChunks, ReportsAtWholeMultiplesOfTheIntervalOnly) {
  ExpectOpened({10, 0, 0, 0});
  ExpectChunk(0).Answers("abcd");
  ExpectChunk(4).Answers("efgh");
  ExpectChunk(8).Answers("ij");
  EXPECT_EQ(Read(), "abcdefghij");
  EXPECT_EQ(progress_.fractions, (std::vector<float>{0.0f, 0.8f}));
}

// The remainder is an unsigned one here: -4 is a large interval of which only offset 0 is a multiple.
TEST_F(ReadFileInSmallChunks, ReadsTheIntervalAnewBeforeEachChunk) {
  camera_.progressInterval_ = 4;
  ExpectOpened({10, 0, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x01, 0}).Asks(4).Answers("abcd").Then([&] { camera_.progressInterval_ = 8; });
  camera_.Expect({0xC4, 0x00, 0x01, 4}).Asks(4).Answers("efgh");
  camera_.Expect({0xC4, 0x00, 0x01, 8}).Asks(4).Answers("ij");
  Read();
  EXPECT_EQ(progress_.fractions, (std::vector<float>{0.0f, 0.8f}));
}

TEST_F(ReadFileInSmallChunks, TakesANegativeIntervalAsUnsigned) {
  camera_.progressInterval_ = -4;
  ExpectOpened({6, 0, 0, 0});
  ExpectChunk(0).Answers("abcd");
  ExpectChunk(4).Answers("ef");
  EXPECT_EQ(Read(), "abcdef");
  EXPECT_EQ(progress_.fractions, std::vector<float>{0.0f});
}

TEST_F(ReadFileInSmallChunks, NeedsNoCallback) {
  camera_.Expect({0xC2, 0x00, 0x01}).Sends(Text("x"));
  camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({1, 0, 0, 0});
  ExpectChunk(0).Answers("a");
  EXPECT_EQ(ToString(camera_.ReadFile("x", nullptr, nullptr, true)), "a");
}

TEST(ReadFileChunkSizes, OfOneSixteenAndSevenHundredGiveTheSameFile) {
  const std::string file = Pattern(33);
  for (const int chunkSize : {1, 16, 700}) {
    ScriptedCamera camera(chunkSize);
    camera.Expect({0xC2, 0x00, 0x01}).Sends(Text("x"));
    camera.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({33, 0, 0, 0});
    for (int offset = 0; offset <= 33; offset += chunkSize) {
      camera.Expect({0xC4, 0x00, 0x01, offset & 0xFF, offset >> 8})
          .Asks(chunkSize)
          .Answers(file.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(chunkSize)));
    }
    EXPECT_EQ(ToString(camera.ReadFile("x", nullptr, nullptr, true)), file);
  }
}

TEST(DeleteFile, SendsThePathWithItsNulAndReturnsTheResult) {
  ScriptedCamera camera;
  camera.open = false;
  camera.Expect({0xC0, 0x00, 0x01}).Sends(Bytes({'I', ':', '\\', 'A', 0}));
  EXPECT_TRUE(camera.DeleteFile("I:\\A"));
  EXPECT_EQ(camera.calls, (Calls{"ClearCancel true", "Transfer true"}));
  camera.Expect({0xC0, 0x00, 0x01}).Sends(Text("x")).Fails();
  EXPECT_FALSE(camera.DeleteFile("x"));
  camera.Expect({0xC0, 0x00, 0x01}).Sends(Text("x")).Throws("gone");
  EXPECT_EQ(Thrown([&] { camera.DeleteFile("x"); }), "CameraTransferError: Camera error: gone");
}

}  // namespace
