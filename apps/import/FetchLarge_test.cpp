#include "apps/import/FetchLarge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "apps/files/Sha1.h"
#include "apps/files/testing/RecordingCalls.h"
#include "apps/import/testing/SyncFixture.h"

namespace apps {
namespace {

using testing::HasSubstr;

// No file here hashes to this.
constexpr char kKeyOfAbc[] = "a9993e364706816aba3e25717850c26c9cd0d89d";

/// Files that come in pieces: the first has two pieces and a bit, the second ends with its last piece.
class LargeFilesTest : public SyncTest {
 protected:
  static constexpr std::size_t kMegabyte = 1U << 20;

  LargeFilesTest() {
    camera_.files["IMG_0001.JPG"] = Text(kMegabyte + 700'001);
    camera_.files["IMG_0002.JPG"] = Text(2 * kMegabyte);
  }
  using SyncTest::Text;
  static std::string Text(std::size_t size) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 2654435761U >> 24);
    return text;
  }
  void ExpectNothingIsLeft() const {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path_)) {
      EXPECT_THAT(entry.path().string(), testing::Not(testing::EndsWith(".part")));
    }
  }
};

TEST_F(LargeFilesTest, TheyAreStoredAsTheyCame) {
  const SyncTotals totals = Run();
  EXPECT_EQ(totals.stored, 2U);
  EXPECT_EQ(totals.bytes, 3 * kMegabyte + 700'001);
  EXPECT_EQ(camera_.reads, 2);
  EXPECT_TRUE(Text("100ABCDE/IMG_0001.JPG") == camera_.files["IMG_0001.JPG"]);
  EXPECT_TRUE(Text("100ABCDE/IMG_0002.JPG") == camera_.files["IMG_0002.JPG"]);
  EXPECT_EQ(Run().stored, 0U);
  ExpectNothingIsLeft();
}

TEST_F(LargeFilesTest, VerifyingReadsTwice) {
  EXPECT_EQ(Run({.verify = true}).stored, 2U);
  EXPECT_EQ(camera_.reads, 4);
  EXPECT_TRUE(manifest_.Find(KeyOf(Picture(1), 1, "K1"))->verified);
}

TEST_F(LargeFilesTest, TwoReadsThatDifferInOneByteAreSaidAndNothingIsStored) {
  camera_.onRead = [&](const std::string&) {
    if (camera_.reads == 2) camera_.files["IMG_0001.JPG"][1'500'000] ^= 1;
  };
  const SyncTotals totals = Run({.verify = true}, {Picture(1)});
  EXPECT_EQ(totals.stored, 0U);
  EXPECT_EQ(totals.failed, 1U);
  EXPECT_THAT(Said(), HasSubstr("Two reads of I:/DCIM/100ABCDE/IMG_0001.JPG differ, so it was not stored"));
  ExpectNothingIsLeft();
}

TEST_F(LargeFilesTest, OneThatIsNotWhatItsKeySaysIsStoredAfterTwoEqualReads) {
  const SyncTotals totals = Run({}, {Picture(1, kKeyOfAbc)});
  EXPECT_EQ(totals.stored, 1U);
  EXPECT_EQ(totals.unlikeKey, 1U);
  EXPECT_EQ(camera_.reads, 2);
}

TEST_F(LargeFilesTest, AReadThatWentWrongIsMendedByOneMoreAttempt) {
  const std::string key = Sha1(camera_.files["IMG_0001.JPG"]);
  camera_.onRead = [&](const std::string&) {
    if (camera_.reads < 3) camera_.files["IMG_0001.JPG"][5] ^= 1;
  };
  const SyncTotals totals = Run({}, {Picture(1, key)});
  EXPECT_EQ(totals.stored, 1U);
  EXPECT_EQ(totals.unlikeKey, 0U);
  EXPECT_EQ(camera_.reads, 2) << "damaged, whole as the key says";
}

TEST_F(LargeFilesTest, TwoReadsThatDifferAreDecidedByAThird) {
  camera_.onRead = [&](const std::string&) {
    if (camera_.reads == 2) camera_.files["IMG_0001.JPG"][5] ^= 1;
  };
  const SyncTotals totals = Run({}, {Picture(1, kKeyOfAbc)});
  EXPECT_EQ(totals.stored, 1U);
  EXPECT_EQ(totals.unlikeKey, 1U);
  EXPECT_EQ(totals.readTwice, 1U);
  EXPECT_EQ(camera_.reads, 3) << "damaged, whole and unlike the first, as the second";
}

TEST_F(LargeFilesTest, AfterAKeyThatDoesNotFitEachFileIsWrittenOnce) {
  camera_.files["IMG_0002.JPG"] = camera_.files["IMG_0001.JPG"];
  camera_.files["IMG_0003.JPG"] = camera_.files["IMG_0001.JPG"];
  const SyncTotals totals = Run({}, {Picture(1, kKeyOfAbc), Picture(2, kKeyOfAbc), Picture(3, kKeyOfAbc)});
  EXPECT_EQ(totals.stored, 3U);
  EXPECT_EQ(totals.unlikeKey, 3U);
  EXPECT_EQ(totals.readTwice, 3U);
  EXPECT_EQ(camera_.reads, 6) << "none more than twice, whether or not its reader waited";
}

TEST_F(LargeFilesTest, OneThatDiffersFromReadToReadIsAnError) {
  camera_.onRead = [&](const std::string&) { ++camera_.files["IMG_0001.JPG"][5]; };
  EXPECT_EQ(Run({}, {Picture(1, kKeyOfAbc)}).failed, 1U);
  EXPECT_THAT(Said(), HasSubstr("differs from read to read"));
  ExpectNothingIsLeft();
}

/// Transfers that are cut after some bytes of a file, and the runs after that.
class CutTransfersTest : public LargeFilesTest {
 protected:
  static constexpr std::size_t kPiece = 65'536;

  CutTransfersTest() { camera_.files["IMG_0001.JPG"] = Text(5 * kMegabyte + 123); }
  using LargeFilesTest::Text;

  /// The camera goes after so many bytes of files from here on.
  void CutAfter(std::size_t bytes) {
    sent_ = 0;
    camera_.onSend = [this, bytes](std::size_t, std::size_t count) {
      sent_ += count;
      if (sent_ > bytes) throw Gone();
    };
  }
  void Mend() {
    sent_ = 0;
    camera_.onSend = [this](std::size_t, std::size_t count) { sent_ += count; };
  }
  std::vector<std::string> Parts() const {
    std::vector<std::string> parts;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path_)) {
      if (entry.path().extension() == ".part") parts.push_back(entry.path());
    }
    return parts;
  }
  Outcome RunUntilCut(const DcfObj& picture) { return RunToItsEnd({}, {picture}); }
  std::string Whole() const { return camera_.files.at("IMG_0001.JPG"); }
  DcfObj WithKey() const { return Picture(1, Sha1(Whole())); }

  std::size_t sent_ = 0;
};

TEST_F(CutTransfersTest, ThePartThatCameIsKeptAndTheNextRunGoesOnBehindIt) {
  CutAfter(3 * kMegabyte);
  EXPECT_EQ(RunUntilCut(WithKey()).code, ExitCode::kGone);
  ASSERT_EQ(Parts().size(), 1U);
  EXPECT_EQ(std::filesystem::file_size(Parts()[0]), 3 * kMegabyte);
  EXPECT_FALSE(std::filesystem::exists(path_ + "/100ABCDE/IMG_0001.JPG"));
  Mend();
  const SyncTotals totals = Run({}, {WithKey()});
  EXPECT_EQ(totals.stored, 1U);
  EXPECT_EQ(totals.resumed, 1U);
  EXPECT_TRUE(Text("100ABCDE/IMG_0001.JPG") == Whole());
  EXPECT_THAT(Parts(), testing::IsEmpty());
  EXPECT_THAT(manifest_.Cuts(), testing::IsEmpty());
  // The rest, the last 64 KiB of the part, and what proves that the camera honours offsets.
  EXPECT_LT(sent_, 2 * kMegabyte + 123 + 3 * kPiece);
}

TEST_F(CutTransfersTest, WithoutAKeyASecondReadDecides) {
  CutAfter(3 * kMegabyte);
  RunUntilCut(Picture(1));
  Mend();
  EXPECT_EQ(Run({}, {Picture(1)}).resumed, 1U);
  EXPECT_GT(sent_, (2 + 5) * kMegabyte);
  EXPECT_TRUE(manifest_.Find(KeyOf(Picture(1), 1, "K1"))->verified);
  EXPECT_TRUE(Text("100ABCDE/IMG_0001.JPG") == Whole());
}

TEST_F(CutTransfersTest, ASecondReadThatIsCutGoesOnToo) {
  CutAfter(3 * kMegabyte);
  RunUntilCut(Picture(1));
  CutAfter(5 * kMegabyte);  // 2 of the rest, and about 3 of the second read
  RunUntilCut(Picture(1));
  ASSERT_EQ(manifest_.Cuts().size(), 1U);
  EXPECT_GT(manifest_.Cuts()[0].compared, 2 * kMegabyte);
  Mend();
  EXPECT_EQ(Run({}, {Picture(1)}).resumed, 1U);
  EXPECT_LT(sent_, 3 * kMegabyte);
  EXPECT_TRUE(Text("100ABCDE/IMG_0001.JPG") == Whole());
}

TEST_F(CutTransfersTest, AWholePartThatWasComparedToItsEndIsComparedOnceMore) {
  CutAfter(3 * kMegabyte);
  RunUntilCut(Picture(1));
  CutAfter(5 * kMegabyte);
  RunUntilCut(Picture(1));
  CutRow row = manifest_.Cuts().at(0);
  row.compared = row.size;
  manifest_.RecordCut(row);
  Mend();
  EXPECT_EQ(Run({}, {Picture(1)}).resumed, 1U) << "it ends";
}

TEST_F(CutTransfersTest, AWholePartThatWasEditedWhileItsSecondReadWasCutIsFound) {
  CutAfter(3 * kMegabyte);
  RunUntilCut(Picture(1));
  CutAfter(5 * kMegabyte);
  RunUntilCut(Picture(1));
  std::fstream(Parts().at(0), std::ios::in | std::ios::out).seekp(kMegabyte).put('!');
  Mend();
  EXPECT_EQ(Run({}, {Picture(1)}).stored, 1U);
  EXPECT_TRUE(Text("100ABCDE/IMG_0001.JPG") == Whole());
}

TEST_F(CutTransfersTest, OneThatIsUnlikeItsKeyIsTakenUpToo) {
  CutAfter(3 * kMegabyte);
  RunUntilCut(Picture(1, kKeyOfAbc));
  Mend();
  const SyncTotals totals = Run({}, {Picture(1, kKeyOfAbc)});
  EXPECT_EQ(totals.resumed, 1U);
  EXPECT_EQ(totals.unlikeKey, 1U);
  EXPECT_LT(sent_, 8 * kMegabyte);
}

TEST_F(CutTransfersTest, AFullDiskKeepsAPartThatWasKeptBefore) {
  CutAfter(3 * kMegabyte);
  RunUntilCut(WithKey());
  Mend();
  {
    RecordingCalls calls(path_);
    calls.FailAt(2, ENOSPC, "write ");
    RunToItsEnd({}, {WithKey()});
  }
  EXPECT_EQ(Parts().size(), 1U);
  EXPECT_EQ(Run({}, {WithKey()}).resumed, 1U);
}

TEST_F(CutTransfersTest, AFileWhoseEndOfThePartIsAnotherNowIsReadFromItsStart) {
  CutAfter(3 * kMegabyte);
  RunUntilCut(Picture(1));
  Mend();
  camera_.files["IMG_0001.JPG"][3 * kMegabyte - 1] ^= 1;
  const SyncTotals totals = Run({}, {Picture(1)});
  EXPECT_EQ(totals.stored, 1U);
  EXPECT_EQ(totals.resumed, 0U);
  EXPECT_TRUE(Text("100ABCDE/IMG_0001.JPG") == Whole());
  EXPECT_THAT(Parts(), testing::IsEmpty());
}

TEST_F(CutTransfersTest, APartThatIsDamagedOnDiskIsFoundByTheKeyOrTheSecondRead) {
  for (const bool hasKey : {true, false}) {
    const DcfObj picture = hasKey ? WithKey() : Picture(1);
    CutAfter(3 * kMegabyte);
    RunUntilCut(picture);
    ASSERT_EQ(Parts().size(), 1U);
    std::fstream(Parts()[0], std::ios::in | std::ios::out).seekp(kMegabyte).put('!');
    Mend();
    const SyncTotals totals = Run({}, {picture});
    EXPECT_EQ(totals.stored, 1U);
    EXPECT_EQ(totals.resumed, 0U) << "read from its start";
    EXPECT_TRUE(Text("100ABCDE/IMG_0001.JPG") == Whole());
    EXPECT_THAT(Parts(), testing::IsEmpty());
    std::filesystem::remove(path_ + "/100ABCDE/IMG_0001.JPG");
  }
}

TEST_F(CutTransfersTest, AFileOfAnotherSizeIsReadFromItsStart) {
  CutAfter(3 * kMegabyte);
  RunUntilCut(Picture(1));
  Mend();
  camera_.files["IMG_0001.JPG"] += "more";
  EXPECT_EQ(Run({}, {Picture(1)}).stored, 1U);
  EXPECT_TRUE(Text("100ABCDE/IMG_0001.JPG") == Whole());
  EXPECT_THAT(Parts(), testing::IsEmpty());
}

TEST_F(CutTransfersTest, APartOfAPictureThatTheCameraNoLongerHasGoes) {
  CutAfter(3 * kMegabyte);
  RunUntilCut(Picture(1));
  Mend();
  camera_.files.erase("IMG_0001.JPG");
  Run({}, {Picture(2)});
  EXPECT_THAT(Parts(), testing::IsEmpty());
  EXPECT_THAT(manifest_.Cuts(), testing::IsEmpty());
}

TEST_F(CutTransfersTest, APartOfAnotherCameraStays) {
  CutAfter(3 * kMegabyte);
  RunUntilCut(Picture(1));
  Mend();
  const SyncPlan other = MakePlan({Picture(2)}, "K2", {1}, Pattern(Pattern::kDefault), manifest_, &folder_);
  EXPECT_FALSE(Sync(context_, Shared(camera_), folder_, manifest_, {}).Run(other).has_value());
  EXPECT_EQ(Parts().size(), 1U);
}

TEST_F(CutTransfersTest, AStopKeepsThePartToo) {
  camera_.onSend = [this](std::size_t offset, std::size_t) {
    if (offset > 2 * kMegabyte) stop_.Request();
  };
  EXPECT_THROW(Run({}, {Picture(1)}), Stopped);
  EXPECT_EQ(Parts().size(), 1U);
}

TEST_F(CutTransfersTest, AFileThatEndsTooSoonIsTakenUpWhereItEnded) {
  camera_.endsAt = 3 * kMegabyte + 5;
  EXPECT_EQ(Run({}, {Picture(1)}).failed, 1U);
  ASSERT_EQ(Parts().size(), 1U);
  EXPECT_FALSE(std::filesystem::exists(path_ + "/100ABCDE/IMG_0001.JPG"));
  camera_.endsAt = std::string::npos;
  const SyncTotals totals = Run({}, {Picture(1)});
  EXPECT_EQ(totals.resumed, 1U);
  EXPECT_TRUE(Text("100ABCDE/IMG_0001.JPG") == Whole());
  EXPECT_THAT(Parts(), testing::IsEmpty());
}

TEST_F(CutTransfersTest, WhatCannotBeWrittenIsNotKept) {
  RecordingCalls calls(path_);
  calls.FailEach(10, 1 << 20, ENOSPC, "write ");
  RunToItsEnd();
  EXPECT_THAT(Parts(), testing::IsEmpty());
}

TEST_F(CutTransfersTest, AFlushThatFailsLeavesNothingToTakeUp) {
  CutAfter(3 * kMegabyte);
  RunUntilCut(WithKey());
  Mend();
  RecordingCalls calls(path_);
  calls.FailAt(1, EACCES, "flush 100ABCDE/");
  EXPECT_EQ(Run({}, {WithKey()}).failed, 1U);
  EXPECT_THAT(Parts(), testing::IsEmpty());
}

TEST_F(CutTransfersTest, ALittleIsNotWorthARow) {
  CutAfter(kMegabyte / 8);
  RunUntilCut(Picture(1));
  EXPECT_THAT(Parts(), testing::IsEmpty());
  CutAfter(kMegabyte / 2);
  RunUntilCut(Picture(1));
  EXPECT_THAT(Parts(), testing::SizeIs(1));
}

TEST_F(LargeFilesTest, OneThatWasHereAlreadyIsKeptAndNotDoubled) {
  std::filesystem::create_directory(path_ + "/100ABCDE");
  std::ofstream(path_ + "/100ABCDE/IMG_0001.JPG") << camera_.files["IMG_0001.JPG"];
  EXPECT_EQ(Run({}, {Picture(1)}).alreadyHere, 1U);
  ExpectNothingIsLeft();
}

TEST_F(LargeFilesTest, OneThatCannotBeWrittenIsReportedAndTheRestGoesOn) {
  RecordingCalls calls(path_);
  calls.FailAt(1, EFBIG, "write ");
  const SyncTotals totals = Run();
  EXPECT_EQ(totals.stored, 1U);
  EXPECT_EQ(totals.failed, 1U);
  ExpectNothingIsLeft();
}

TEST_F(LargeFilesTest, AFullDiskEndsTheRunWithItsSentence) {
  RecordingCalls calls(path_);
  calls.FailEach(3, 1 << 20, ENOSPC, "write ");
  EXPECT_THAT(RunToItsEnd().sentence, HasSubstr("make room there and try again"));
  ExpectNothingIsLeft();
}

}  // namespace
}  // namespace apps
