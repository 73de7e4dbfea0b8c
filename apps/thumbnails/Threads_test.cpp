// What the threads of a pool do at once. ThreadSanitizer says whether they may.
#include <gtest/gtest.h>

#include "apps/commandline/Failure.h"
#include "apps/thumbnails/ThumbnailPool.h"

namespace apps {
namespace {

// A program that is missing: each picture fails at once, so the threads come back to the queue as often as they can.
constexpr char kMissing[] = "/nonexistent/kelva-thumbnail";

TEST(Threads, TakePicturesWhileMoreAreHandedOver) {
  ThumbnailPool pool(3, kMissing);
  std::vector<std::future<Thumbnail>> results;
  for (int i = 0; i < 300; ++i) results.push_back(pool.Draw({'x'}));
  for (std::future<Thumbnail>& result : results) EXPECT_THROW(result.get(), Failure);
}

TEST(Threads, EndAtAnyMoment) {
  for (int round = 0; round < 100; ++round) {
    ThumbnailPool pool(3, kMissing);
    for (int i = 0; i < round % 4; ++i) pool.Draw({'x'});
  }
}

TEST(Threads, EndWhileTheyBeginToWait) {
  // A request that came between a look at the queue and the wait would never be heard.
  for (int round = 0; round < 3000; ++round) const ThumbnailPool pool(2, kMissing);
}

}  // namespace
}  // namespace apps
