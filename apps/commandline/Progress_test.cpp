#include "apps/commandline/Progress.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <string>

#include "apps/commandline/Printable.h"
#include "base/FileDescriptor.h"

namespace apps {
namespace {

using namespace std::chrono_literals;

TEST(ProgressLineTest, ShowsShareBytesRateAndTimeLeft) {
  EXPECT_EQ(ProgressLine({"IMG_0001.JPG", 5'000'000, 20'000'000, 2s}, 100),
            "IMG_0001.JPG  25% [#####               ]  5.0 MB of 20.0 MB  2.5 MB/s  0:06 left");
}

TEST(ProgressLineTest, AnUnknownTotalShowsBytesAndRateOnly) {
  EXPECT_EQ(ProgressLine({"console", 5'000'000, 0, 2s}, 100), "console  5.0 MB  2.5 MB/s");
}

TEST(ProgressLineTest, ThereIsNoRateBeforeThereIsTimeToMeasureIt) {
  EXPECT_EQ(ProgressLine({"A", 0, 1000, 0s}, 100), "A   0% [                    ]  0 B of 1.0 kB");
}

TEST(ProgressLineTest, LongTransfersShowHours) {
  EXPECT_EQ(ProgressLine({"A", 1'000, 10'000'000, 1s}, 100),
            "A   0% [                    ]  1.0 kB of 10.0 MB  1.0 kB/s  2:46:39 left");
}

TEST(ProgressLineTest, NeverFillsTheLastColumn) {
  const std::string name(300, 'n');
  for (std::size_t columns = 1; columns < 120; ++columns) {
    EXPECT_LT(Width(ProgressLine({name, 500, 1000, 1s}, columns)), columns) << columns;
  }
}

TEST(ProgressLineTest, FilesCountWhereTheirBytesAreNotKnown) {
  EXPECT_EQ(ProgressLine({"A", 3000, 0, 1s, 1, 4}, 100), "A  25% [#####               ]  3.0 kB  3.0 kB/s  0:03 left");
}

TEST(ProgressLineTest, AShareAloneHasNoBytes) {
  EXPECT_EQ(ProgressLine({"writing", 250, 1000, 2s, 0, 0, true}, 100),
            "writing  25% [#####               ]  0:06 left");
}

TEST(ProgressLineTest, MoreThanAnnouncedStaysAtTheEndOfTheBar) {
  EXPECT_EQ(ProgressLine({"A", 3000, 1000, 0s}, 100), "A 100% [####################]  3.0 kB of 1.0 kB");
}

class ProgressTest : public testing::Test {
 protected:
  std::string Shown() const {
    std::array<char, 4096> buffer{};
    const ssize_t size = ::pread(page_.Get(), buffer.data(), buffer.size(), 0);
    return std::string(buffer.data(), static_cast<std::size_t>(size));
  }

  base::FileDescriptor page_{::memfd_create("page", MFD_CLOEXEC)};
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

TEST_F(ProgressTest, WhatNobodySeesIsNeverDue) {
  Reporter silent("kelva", page_.Get(), {});
  EXPECT_FALSE(Progress(silent, stop_, "A", 1000).IsDue());
  Reporter reporter("kelva", page_.Get(), {.json = true});
  Progress progress(reporter, stop_, "A", 1000);
  const auto start = Progress::Clock::now();
  EXPECT_TRUE(progress.IsDue(start));
  progress.At(0, start);
  EXPECT_FALSE(progress.IsDue(start + 499ms));
  EXPECT_TRUE(progress.IsDue(start + 500ms));
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
