#include "Progress.h"

#include <gtest/gtest.h>

#include <vector>

#include "testing/Switches.h"

namespace {

using wifi_testing::Progress;

std::vector<float> Reports(const kelva::ReadProgress& read, const Progress& progress,
                           std::initializer_list<std::uint32_t> offsets) {
  for (const std::uint32_t offset : offsets) read.BeforeChunk(offset);
  return progress.fractions;
}

const int kEight = 8;

TEST(ReadProgress, AtIntervalsReportsWholeMultiples) {
  Progress progress;
  const auto read = kelva::ReadProgress::AtIntervals(Progress::Report, &progress, &kEight, 20);
  EXPECT_EQ(Reports(read, progress, {0, 4, 8, 12, 16}), (std::vector<float>{0.0f, 0.4f, 0.8f}));
}

TEST(ReadProgress, AtIntervalsTakesOffsetsBeyondTwoGibibytesAsUnsigned) {
  Progress progress;
  const int interval = 0x40000;
  const auto read = kelva::ReadProgress::AtIntervals(Progress::Report, &progress, &interval, 0xFFFFFFFF);
  EXPECT_EQ(Reports(read, progress, {0x80000000, 0x80010000}), std::vector<float>{2147483648.0f / 4294967296.0f});
}

TEST(ReadProgress, AfterFirstChunkReportsEveryOffsetButZero) {
  Progress progress;
  const auto read = kelva::ReadProgress::AfterFirstChunk(Progress::Report, &progress, 10);
  EXPECT_EQ(Reports(read, progress, {0, 5, 10, 15}), (std::vector<float>{0.5f, 1.0f, 1.5f}));
}

TEST(ReadProgress, WithoutTotalIntervalOrCallbackReportsNothing) {
  Progress progress;
  const int none = 0;
  EXPECT_TRUE(
      Reports(kelva::ReadProgress::AtIntervals(Progress::Report, &progress, &kEight, 0), progress, {0, 8}).empty());
  EXPECT_TRUE(
      Reports(kelva::ReadProgress::AtIntervals(Progress::Report, &progress, &none, 8), progress, {0, 8}).empty());
  EXPECT_TRUE(Reports(kelva::ReadProgress::AtIntervals(nullptr, &progress, &kEight, 8), progress, {0, 8}).empty());
  EXPECT_TRUE(Reports(kelva::ReadProgress::AfterFirstChunk(nullptr, &progress, 8), progress, {0, 8}).empty());
  EXPECT_TRUE(Reports(kelva::ReadProgress::None(), progress, {0, 8}).empty());
}

}  // namespace
