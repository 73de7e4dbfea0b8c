#include "apps/kelva/survey/Questions.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include "src/wifi/testing/ScriptedCamera.h"

namespace apps::survey {
namespace {

using namespace wifi_testing;

class QuestionsTest : public testing::Test {
 protected:
  const boost::shared_ptr<ScriptedCamera> camera_ = boost::make_shared<ScriptedCamera>();
  const Stop stop_{};
  Questions questions_{camera_, stop_};
};

TEST_F(QuestionsTest, AnAnswerIsAsLongAsItCame) {
  camera_->Expect({0xC6, 0, 3}).Asks(14).Answers("ABC");
  EXPECT_EQ(questions_.Query(3, 14), "ABC");
  camera_->Expect({0xC6, 0, 6}).Asks(4).Answers("ABCDEFG");
  EXPECT_EQ(questions_.Query(6, 4), "ABCD");
  camera_->Expect({0xC6, 0, 6}).Asks(4).Answers("ABCD").Moves(-1);
  EXPECT_EQ(questions_.Query(6, 4), "");
}

TEST_F(QuestionsTest, ATransportWithoutAnAnswerIsAnError) {
  camera_->Expect({0xC6, 0, 6}).Asks(4).Fails();
  EXPECT_THROW(questions_.Query(6, 4), CameraError);
}

TEST_F(QuestionsTest, TheInformationRecordIsAskedForAsTheLibraryDoes) {
  camera_->Expect({0xC2, 0, 0});
  camera_->Expect({0xC6, 0, 0}).Asks(4).Answers({0x01, 0x00, 0, 0});
  camera_->Expect({0xC4, 0, 1}).Asks(644).Answers(Pattern(644));
  const DataSet record = questions_.Information();
  EXPECT_EQ(record.announced, 1U);
  EXPECT_EQ(record.bytes, Pattern(644)) << "643 bytes more than announced, and the process goes on";
}

TEST_F(QuestionsTest, AListEndsWithAChunkThatIsNotFull) {
  camera_->Expect({0xC2, 0, 3}).Sends(Text("I:\\"));
  camera_->Expect({0xC4, 0, 1}).Asks(65536).Answers(Pattern(65536));
  camera_->Expect({0xC4, 0, 1, 0, 0, 1}).Asks(65536).Answers("end");
  const DataSet list = questions_.Folder("I:\\", 1'000'000);
  EXPECT_EQ(list.bytes, Pattern(65536) + "end");
  EXPECT_TRUE(list.whole);
}

TEST_F(QuestionsTest, NoMoreIsTakenThanAllowed) {
  camera_->Expect({0xC2, 0, 2});
  camera_->Expect({0xC4, 0, 1}).Asks(65536).Answers(Pattern(65536));
  camera_->Expect({0xC4, 0, 1, 0, 0, 1}).Asks(65536).Answers(Pattern(65536));
  const DataSet catalogue = questions_.Catalogue(65537);
  EXPECT_EQ(catalogue.bytes, Pattern(65536) + Pattern(1));
  EXPECT_FALSE(catalogue.whole);
}

TEST_F(QuestionsTest, ChunksAreTimedForwardFromTheStartAndWithinTheFile) {
  const auto select = [&] { camera_->Expect({0xC2, 0, 1}).Sends(Text("F")); };
  select();
  camera_->Expect({0xC4, 0, 1}).Asks(512).Answers(Pattern(512));
  camera_->Expect({0xC4, 0, 1, 0, 2}).Asks(512).Answers(Pattern(512));
  select();
  camera_->Expect({0xC4, 0, 1}).Asks(1024).Answers(Pattern(1024));
  for (int larger = 2048; larger <= 65536; larger *= 2) select();
  const std::vector<Timing> timings = questions_.TimeChunks("F", 1500);
  ASSERT_EQ(timings.size(), 2U);
  EXPECT_EQ(timings[0].chunk, 512);
  EXPECT_EQ(timings[0].reads, 2);
  EXPECT_GT(timings[0].medianUs, 0);
  EXPECT_EQ(timings[1].chunk, 1024);
}

TEST_F(QuestionsTest, AStopEndsItBeforeTheNextCommand) {
  Stop stop;
  stop.Request();
  EXPECT_THROW(Questions(camera_, stop).Query(6, 4), Stopped);
  EXPECT_EQ(camera_->transfers, 0);
}

}  // namespace
}  // namespace apps::survey
