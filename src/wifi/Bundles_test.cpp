#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

// What the four bulk reads share, shown with the calibration files: a bundle without count and without deletion.

namespace {

using namespace wifi_testing;

// 31 empty entries: the shortest bundle.
const std::string kEmptyTable(1116, '\0');

class BulkRead : public testing::Test {
 protected:
  explicit BulkRead(int chunkSize = 65536) : camera_(chunkSize, 1) {}
  void ExpectPrepared(std::initializer_list<int> announced) {
    camera_.Expect({0xC2, 0x00, 0x06, 0, 0, 0, 0});
    camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers(announced);
  }
  std::vector<_Sha1obj> Read() { return camera_.ReadCalibration(Progress::Report, &progress_, true); }
  ScriptedCamera camera_;
  Progress progress_;
};

TEST_F(BulkRead, TouchesNothingOnAClosedCamera) {
  camera_.open = false;
  EXPECT_TRUE(Read().empty());
  EXPECT_EQ(camera_.calls, Calls{"IsOpen"});
}

TEST_F(BulkRead, PreparesAsksTheSizeAndReadsWithSubCodeZero) {
  ExpectPrepared({0x5C, 0x04, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x00, 0, 0, 0, 0}).Asks(65536).Answers(kEmptyTable);
  EXPECT_TRUE(Read().empty());
  EXPECT_EQ(camera_.calls, (Calls{"IsOpen", "ClearCancel true", "Transfer true", "Transfer true", "Transfer true"}));
  EXPECT_TRUE(progress_.fractions.empty());
}

TEST_F(BulkRead, PassesItsFlagToEveryCall) {
  camera_.Expect({0xC2, 0x00, 0x06}).Flag(false);
  camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({1, 0, 0, 0}).Flag(false);
  camera_.Expect({0xC4, 0x00, 0x00}).Asks(65536).Answers(kEmptyTable).Flag(false);
  EXPECT_TRUE(camera_.ReadCalibration(nullptr, nullptr, false).empty());
  EXPECT_EQ(camera_.calls[1], "ClearCancel false");
}

TEST_F(BulkRead, IsEmptyWhenThePreparationFails) {
  camera_.Expect({0xC2, 0x00, 0x06}).Fails();
  EXPECT_TRUE(Read().empty());
}

TEST_F(BulkRead, IsEmptyWhenTheSizeFailsOrIsZero) {
  camera_.Expect({0xC2, 0x00, 0x06});
  camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({1, 0, 0, 0}).ReturnsFalse();
  EXPECT_TRUE(Read().empty());
  ExpectPrepared({0, 0, 0, 0});
  EXPECT_TRUE(Read().empty());
}

TEST_F(BulkRead, TakesTheMissingBytesOfAShortSizeAsZero) {
  ExpectPrepared({1});
  camera_.Expect({0xC4}).Asks(65536).Answers(kEmptyTable);
  EXPECT_TRUE(Read().empty());
  ExpectPrepared({});
  EXPECT_TRUE(Read().empty());
}

TEST_F(BulkRead, DoesNotCheckHowMuchOfTheSizeCame) {
  camera_.Expect({0xC2, 0x00, 0x06});
  camera_.Expect({0xC6, 0x00, 0x00}).Asks(4).Answers({1, 0, 0, 0}).Moves(0);
  camera_.Expect({0xC4}).Asks(65536).Answers(kEmptyTable);
  EXPECT_TRUE(Read().empty());
}

TEST_F(BulkRead, OfExactlyOneChunkCostsAFurtherEmptyRead) {
  ExpectPrepared({0, 0, 1, 0});
  camera_.Expect({0xC4, 0x00, 0x00, 0, 0, 0, 0}).Asks(65536).Answers(std::string(65536, '\0'));
  camera_.Expect({0xC4, 0x00, 0x00, 0, 0, 1, 0}).Asks(65536).Answers("");
  EXPECT_TRUE(Read().empty());
  EXPECT_EQ(progress_.fractions, std::vector<float>{1.0f});
}

TEST_F(BulkRead, OfWhichTheFurtherReadFailsIsAFailure) {
  std::string table = kEmptyTable;
  table[0] = 2;
  ExpectPrepared({0, 0, 1, 0});
  camera_.Expect({0xC4, 0x00, 0x00, 0, 0, 0, 0}).Asks(65536).Answers(Field(table, 65536));
  camera_.Expect({0xC4, 0x00, 0x00, 0, 0, 1, 0}).Asks(65536).Fails();
  EXPECT_TRUE(Read().empty());
}

TEST_F(BulkRead, PassesATransferErrorOn) {
  const ExceptionsOff off;
  ExpectPrepared({1, 0, 0, 0});
  camera_.Expect({0xC4}).Asks(65536).Throws("gone");
  EXPECT_EQ(Thrown([&] { Read(); }), "CameraTransferError: Camera error: gone");
}

class BulkReadInChunks : public BulkRead {
 protected:
  BulkReadInChunks() : BulkRead(400) {}
};

// The fraction is the bytes asked for so far over the total, before every chunk but the first, whatever the interval.
TEST_F(BulkReadInChunks, ReportsBeforeEveryChunkButTheFirst) {
  ExpectPrepared({0x5C, 0x04, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x00, 0, 0, 0, 0}).Asks(400).Answers(kEmptyTable.substr(0, 400));
  camera_.Expect({0xC4, 0x00, 0x00, 0x90, 0x01, 0, 0}).Asks(400).Answers(kEmptyTable.substr(0, 400));
  camera_.Expect({0xC4, 0x00, 0x00, 0x20, 0x03, 0, 0}).Asks(400).Answers(kEmptyTable.substr(0, 316));
  camera_.progressInterval_ = 262144;
  EXPECT_TRUE(Read().empty());
  EXPECT_EQ(progress_.fractions, (std::vector<float>{400.0f / 1116.0f, 800.0f / 1116.0f}));
}

TEST_F(BulkReadInChunks, NeverLooksAtTheInterval) {
  camera_.progressInterval_ = 0;
  ExpectPrepared({1, 0, 0, 0});
  camera_.Expect({0xC4}).Asks(400).Answers("abc");
  EXPECT_TRUE(Read().empty());
}

TEST_F(BulkReadInChunks, AFailedThirdChunkDropsTheTwoBeforeIt) {
  std::string table = kEmptyTable;
  table[0] = 1;
  ExpectPrepared({0xFF, 0xFF, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x00, 0}).Asks(400).Answers(table.substr(0, 400));
  camera_.Expect({0xC4, 0x00, 0x00, 0x90, 0x01}).Asks(400).Answers(table.substr(400, 400));
  camera_.Expect({0xC4, 0x00, 0x00, 0x20, 0x03}).Asks(400).Fails();
  EXPECT_TRUE(Read().empty());
}

TEST_F(BulkReadInChunks, DoesNotStopAtTheAnnouncedTotal) {
  ExpectPrepared({100, 0, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x00, 0}).Asks(400).Answers(kEmptyTable.substr(0, 400));
  camera_.Expect({0xC4, 0x00, 0x00, 0x90, 0x01}).Asks(400).Answers(kEmptyTable.substr(0, 300));
  EXPECT_TRUE(Read().empty());
  EXPECT_EQ(progress_.fractions, std::vector<float>{4.0f});
}

// Sets another chunk size at each report, as long as there is one.
struct SizeChanger {
  static void Change(void* context, float) {
    auto& self = *static_cast<SizeChanger*>(context);
    if (self.sizes.empty()) return;
    self.camera->chunkSize_ = self.sizes.front();
    self.sizes.erase(self.sizes.begin());
  }
  ScriptedCamera* camera;
  std::vector<int> sizes;
};

// The chunk size is read again before each request, and the buffer follows it.
TEST_F(BulkReadInChunks, FollowsAChunkSizeThatChangesOnTheWay) {
  std::string bundle = kEmptyTable + "Z";
  bundle[0] = 1;
  ExpectPrepared({0x5D, 0x04, 0, 0});
  camera_.Expect({0xC4, 0x00, 0x00, 0, 0}).Asks(400).Answers(bundle.substr(0, 400));
  camera_.Expect({0xC4, 0x00, 0x00, 0x90, 0x01}).Asks(700).Answers(bundle.substr(400, 700));
  camera_.Expect({0xC4, 0x00, 0x00, 0x4C, 0x04}).Asks(10).Answers(bundle.substr(1100, 10));
  camera_.Expect({0xC4, 0x00, 0x00, 0x56, 0x04}).Asks(10).Answers(bundle.substr(1110));
  SizeChanger changer{&camera_, {700, 10}};
  const std::vector<_Sha1obj> files = camera_.ReadCalibration(SizeChanger::Change, &changer, true);
  ASSERT_EQ(files.size(), 1u);
  EXPECT_EQ(ToString(files[0].data), "Z");
}

TEST_F(BulkReadInChunks, ClampsACountBeyondTheChunkAndEnds) {
  ExpectPrepared({0xFF, 0xFF, 0, 0});
  camera_.Expect({0xC4}).Asks(400).Answers(std::string(400, '\0')).Moves(401);
  EXPECT_TRUE(Read().empty());
}

TEST_F(BulkReadInChunks, TakesANegativeCountAsAnEmptyChunk) {
  ExpectPrepared({0xFF, 0xFF, 0, 0});
  camera_.Expect({0xC4}).Asks(400).Answers("").Moves(-400);
  EXPECT_TRUE(Read().empty());
}

}  // namespace
