#include "apps/commandline/Progress.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <string>

#include "apps/commandline/Printable.h"
#include "base/FileDescriptor.h"
#include "base/testing/UnnamedFile.h"

namespace apps {
namespace {

using namespace std::chrono_literals;

TEST(ProgressLineTest, ShowsShareBytesRateTimeLeftAndTheName) {
  EXPECT_EQ(ProgressLine({"IMG_0001.JPG", 5'000'000, 20'000'000, 2s}, 100),
            " 25 %    5.0 MB of 20.0 MB   2.5 MB/s         6 s left  IMG_0001.JPG");
}

TEST(ProgressLineTest, TheColumnsStayWhereTheyAre) {
  const std::string early = ProgressLine({"a", 1'000'000'000, 0, 6s, 515, 3203}, 100);
  const std::string late = ProgressLine({"a long name.JPG", 900, 0, 1s, 7, 3203}, 100);
  EXPECT_EQ(early, " 515/3203   16 %    1.0 GB   166 MB/s        32 s left  a");
  EXPECT_EQ(late, "   7/3203    0 %     900 B    900 B/s  7 min 37 s left  a long name.JPG");
}

TEST(ProgressLineTest, AnUnknownTotalShowsBytesAndRateOnly) {
  EXPECT_EQ(ProgressLine({"console", 5'000'000, 0, 2s}, 100), "5.0 MB   2.5 MB/s  console");
}

TEST(ProgressLineTest, ThereIsNoRateBeforeThereIsTimeToMeasureIt) {
  EXPECT_EQ(ProgressLine({"A", 0, 1000, 0s}, 100), "  0 %       0 B of 1.0 kB                              A");
}

TEST(ProgressLineTest, LongTransfersShowHours) {
  EXPECT_EQ(ProgressLine({"A", 1'000, 10'000'000, 1s}, 100),
            "  0 %    1.0 kB of 10.0 MB   1.0 kB/s  2 h 46 min left  A");
}

TEST(ProgressLineTest, NeverFillsTheLastColumn) {
  const std::string name(300, 'n');
  const std::string wide = "\xE6\x97\xA5\xE6\x9C\xAC\xE6\x97\xA5\xE6\x9C\xAC\xE6\x97\xA5\xE6\x9C\xAC";
  for (std::size_t columns = 1; columns < 120; ++columns) {
    EXPECT_LT(Width(ProgressLine({name, 500, 1000, 1s}, columns)), columns) << columns;
    EXPECT_LT(Width(ProgressLine({wide, 500, 1000, 1s}, columns)), columns) << columns;
  }
}

TEST(ProgressLineTest, ANarrowTerminalShowsWhatMattersFirst) {
  EXPECT_EQ(ProgressLine({"IMG_0001.JPG", 1'000'000'000, 0, 6s, 515, 3203}, 40), " 515/3203   16 %  IMG_0001.JPG");
}

TEST(ProgressLineTest, FilesCountWhereTheirBytesAreNotKnown) {
  EXPECT_EQ(ProgressLine({"A", 3000, 0, 1s, 1, 4}, 100), "1/4   25 %    3.0 kB   3.0 kB/s         3 s left  A");
}

TEST(ProgressLineTest, BytesThatAreKnownSayTheShareOfSeveralFilesToo) {
  EXPECT_EQ(ProgressLine({"A", 3000, 12'000, 1s, 1, 2}, 100), "1/2   25 %    3.0 kB   3.0 kB/s         3 s left  A");
}

TEST(ProgressLineTest, APhaseThatIsNotReadingIsNamed) {
  EXPECT_EQ(ProgressLine({"A", 0, 0, 0s, 1, 4, false, "deleting"}, 100).substr(0, 20), "deleting  1/4   25 %");
  EXPECT_EQ(ProgressLine({"A", 0, 0, 0s, 1, 4, false, "reading"}, 100).substr(0, 10), "1/4   25 %");
}

TEST(ProgressLineTest, AShareAloneHasNoBytes) {
  EXPECT_EQ(ProgressLine({"writing", 250, 1000, 2s, 0, 0, true}, 100), " 25 %         6 s left  writing");
}

TEST(ProgressLineTest, MoreThanAnnouncedStaysAtTheEnd) {
  EXPECT_EQ(ProgressLine({"A", 3000, 1000, 0s}, 100).substr(0, 5), "100 %");
}

class ProgressTest : public testing::Test {
 protected:
  std::string Shown() const {
    std::array<char, 4096> buffer{};
    const ssize_t size = ::pread(page_.Get(), buffer.data(), buffer.size(), 0);
    return std::string(buffer.data(), static_cast<std::size_t>(size));
  }

  base::FileDescriptor page_{base::test::UnnamedFile()};
  Stop stop_;
};

TEST_F(ProgressTest, EventsForScriptsComeAtMostTwiceASecond) {
  Reporter reporter("kelva", page_.Get(), {.json = true});
  Progress progress(reporter, stop_, "A\x1b", 1000);
  const auto start = Progress::Clock::now();
  progress.At(0, start);
  progress.At(100, start + 499ms);
  progress.At(500, start + 500ms);
  const std::string shown = Shown();
  EXPECT_EQ(std::count(shown.begin(), shown.end(), '\n'), 2);
  EXPECT_NE(shown.find(R"({"schema":1,"event":"progress","what":"A\\x1b","done":0,"total":1000})"), std::string::npos);
}

TEST_F(ProgressTest, OneFileAfterAnotherGivesNoMoreEventsThanOne) {
  Reporter reporter("kelva", page_.Get(), {.json = true});
  const auto start = Progress::Clock::now();
  for (const auto at : {0ms, 1ms, 499ms, 500ms, 999ms}) Progress(reporter, stop_, "A", 1000).At(0, start + at);
  const std::string shown = Shown();
  EXPECT_EQ(std::count(shown.begin(), shown.end(), '\n'), 2);
}

TEST_F(ProgressTest, AShareIsAnEventWithoutBytes) {
  Reporter reporter("kelva", page_.Get(), {.json = true});
  Progress progress(reporter, stop_, "writing", 0);
  const auto start = Progress::Clock::now();
  progress.AtShare(0.25, start + 1s);
  progress.AtShare(1.5, start + 2s);
  progress.AtShare(std::nan(""), start + 3s);
  EXPECT_EQ(Shown(),
            "{\"schema\":1,\"event\":\"progress\",\"what\":\"writing\",\"share\":0.25}\n"
            "{\"schema\":1,\"event\":\"progress\",\"what\":\"writing\",\"share\":1}\n"
            "{\"schema\":1,\"event\":\"progress\",\"what\":\"writing\",\"share\":0}\n");
}

TEST_F(ProgressTest, IsShownToAPersonOrAScript) {
  Reporter silent("kelva", page_.Get(), {});
  EXPECT_FALSE(Progress(silent, stop_, "A", 1000).IsShown());
  Reporter script("kelva", page_.Get(), {.json = true});
  EXPECT_TRUE(Progress(script, stop_, "A", 1000).IsShown());
  Reporter person("kelva", page_.Get(), {.terminal = true});
  EXPECT_TRUE(Progress(person, stop_, "A", 1000).IsShown());
}

TEST_F(ProgressTest, APhaseAndTheFileAreInTheEvent) {
  Reporter reporter("kelva", page_.Get(), {.json = true});
  Progress progress(reporter, stop_, "", 0);
  progress.Phase("deleting");
  progress.Name("A.JPG");
  progress.Files(3, 7);
  progress.At(0);
  EXPECT_EQ(
      Shown(),
      "{\"schema\":1,\"event\":\"progress\",\"what\":\"A.JPG\",\"done\":0,\"file\":\"A.JPG\",\"index\":3,\"files\":3,"
      "\"files_total\":7,\"phase\":\"deleting\"}\n");
}

TEST_F(ProgressTest, ACameraThatDoesNotAnswerIsSaidAfterFiveSeconds) {
  const std::string complaint = "\r\x1b[KNo answer from the camera for 12 s; check the cable. Ctrl-C stops.";
  Reporter reporter("kelva", page_.Get(), {.terminal = true});
  reporter.Tick(Progress::Clock::now() + 60s);
  EXPECT_EQ(Shown(), "") << "nothing was asked";
  reporter.AwaitCamera(true);
  reporter.Tick(Progress::Clock::now() + 4s);
  EXPECT_EQ(Shown(), "");
  reporter.Tick(Progress::Clock::now() + 12s);
  EXPECT_EQ(Shown(), complaint);
  reporter.AwaitCamera(false);
  EXPECT_EQ(Shown(), complaint + "\r\x1b[K") << "it answered";
  reporter.Tick(Progress::Clock::now() + 60s);
  EXPECT_EQ(Shown(), complaint + "\r\x1b[K") << "the disk is waited for";
}

TEST_F(ProgressTest, TheSentenceOfASilentCameraTakesThePlaceOfTheBar) {
  Reporter reporter("kelva", page_.Get(), {.terminal = true});
  Progress progress(reporter, stop_, "A", 1000);
  progress.At(10);
  reporter.AwaitCamera(true);
  reporter.Tick(Progress::Clock::now() + 12s);
  EXPECT_TRUE(Shown().ends_with("A\r\x1b[KNo answer from the camera for 12 s; check the cable. Ctrl-C stops."))
      << Shown();
}

TEST_F(ProgressTest, ASilentCameraIsNoMatterForScripts) {
  for (const ReportStyle style :
       {ReportStyle{.json = true}, ReportStyle{.quiet = true, .terminal = true}, ReportStyle{}}) {
    Reporter reporter("kelva", page_.Get(), style);
    reporter.AwaitCamera(true);
    reporter.Tick(Progress::Clock::now() + 12s);
    reporter.AwaitCamera(false);
    EXPECT_EQ(Shown(), "");
  }
}

TEST_F(ProgressTest, TheBarIsTakenAwayAtTheEnd) {
  Reporter reporter("kelva", page_.Get(), {.terminal = true});
  { Progress(reporter, stop_, "A", 1000).At(10); }
  EXPECT_TRUE(Shown().ends_with("\r\x1b[K"));
}

TEST_F(ProgressTest, ARunningTransferStopsWhenAsked) {
  Reporter reporter("kelva", page_.Get(), {});
  Progress progress(reporter, stop_, "A", 1000);
  Progress::Callback(&progress, 0.5F);
  stop_.Request();
  EXPECT_THROW(Progress::Callback(&progress, 0.75F), Stopped);
}

}  // namespace
}  // namespace apps
