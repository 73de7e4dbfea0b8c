#include "apps/thumbnails/ThumbnailPool.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "apps/commandline/Failure.h"
#include "apps/decoder/Jpeg.h"
#include "apps/decoder/testing/TinyJpeg.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

namespace fs = std::filesystem;

std::vector<char> Picture(int columns) {
  const std::string file = TinyJpeg::File(columns, std::vector<int>(static_cast<std::size_t>(columns), 90));
  return {file.begin(), file.end()};
}

/// A kelva-thumbnail that leaves a file with the number of its process in a folder and never draws.
class SilentProgram {
 public:
  SilentProgram() {
    fs::create_directory(Started());
    std::ofstream(Path()) << "#!/bin/sh\nprintf KTHR >&0\n: > " << Started().string() << "/$$\nexec sleep 60\n";
    ::chmod(Path().c_str(), 0755);
  }
  std::string Path() const { return scratch_.Path() / "silent"; }
  std::ptrdiff_t Count() const { return std::distance(fs::directory_iterator(Started()), fs::directory_iterator()); }
  void WaitFor(std::ptrdiff_t count) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (Count() < count && std::chrono::steady_clock::now() < end) std::this_thread::yield();
    EXPECT_EQ(Count(), count);
  }

 private:
  fs::path Started() const { return scratch_.Path() / "started"; }
  const base::ScratchFolder scratch_{};
};

TEST(ThumbnailPoolTest, EachResultBelongsToItsPicture) {
  ThumbnailPool pool(3);
  std::vector<std::future<Thumbnail>> results;
  for (int columns = 1; columns <= 12; ++columns) results.push_back(pool.Draw(Picture(columns)));
  for (int columns = 1; columns <= 12; ++columns) {
    EXPECT_EQ(results[static_cast<std::size_t>(columns - 1)].get().width, columns * 8);
  }
}

TEST(ThumbnailPoolTest, ADamagedPictureCostsNoOther) {
  ThumbnailPool pool(2);
  std::future<Thumbnail> bad = pool.Draw({'b', 'a', 'd'});
  std::future<Thumbnail> good = pool.Draw(Picture(2));
  EXPECT_THROW(bad.get(), NoPicture);
  EXPECT_EQ(good.get().width, 16);
}

TEST(ThumbnailPoolTest, PicturesAreDrawnAtOnceAndGivenUpAtTheEnd) {
  const SilentProgram program;
  const auto start = std::chrono::steady_clock::now();
  {
    ThumbnailPool pool(2, program.Path());
    for (int i = 0; i < 5; ++i) pool.Draw(Picture(1));
    program.WaitFor(2);
  }
  EXPECT_EQ(program.Count(), 2) << "no more processes than asked for";
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(40)) << "it waited for what it gave up";
}

TEST(ThumbnailPoolTest, AProgramThatIsMissingIsAFailureOfEachResult) {
  ThumbnailPool pool(2, "/nonexistent/kelva-thumbnail");
  EXPECT_THROW(pool.Draw(Picture(1)).get(), Failure);
}

TEST(ThumbnailPoolTest, ThereAreNoMoreProcessesThanPicturesOrProcessors) {
  EXPECT_EQ(ThumbnailPool::SizeFor(0), 0U);
  EXPECT_EQ(ThumbnailPool::SizeFor(1), 1U);
  constexpr unsigned long long kGiB = 1ULL << 30;
  EXPECT_EQ(ThumbnailPool::SizeFor(1'000'000, 4, 64 * kGiB), 4U);
  EXPECT_EQ(ThumbnailPool::SizeFor(3, 4, 64 * kGiB), 3U);
  EXPECT_EQ(ThumbnailPool::SizeFor(1'000'000, 64, 8 * kGiB), 4U) << "a quarter of the memory, 512 MiB each";
  EXPECT_EQ(ThumbnailPool::SizeFor(1'000'000, 4, kGiB), 1U);
  EXPECT_EQ(ThumbnailPool::SizeFor(1'000'000, 0, 64 * kGiB), 1U) << "the number of processors is not known";
}

}  // namespace
}  // namespace apps
