// Threads that have pictures drawn, each by a process of its own.
#include "apps/thumbnails/ThumbnailPool.h"

#include <unistd.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace apps {

std::size_t ThumbnailPool::SizeFor(std::size_t pictures, std::size_t processors, unsigned long long memory) {
  // A picture of a few bytes may claim this much in its process: all coefficients of the largest one in several passes.
  constexpr unsigned long long kMost = 512ULL << 20;
  const auto fitting = static_cast<std::size_t>(std::max(1ULL, memory / 4 / kMost));
  return std::min({std::max<std::size_t>(processors, 1), pictures, fitting});
}

std::size_t ThumbnailPool::SizeFor(std::size_t pictures) {
  const auto memory = static_cast<unsigned long long>(::sysconf(_SC_PHYS_PAGES)) *
                      static_cast<unsigned long long>(::sysconf(_SC_PAGESIZE));
  return SizeFor(pictures, std::thread::hardware_concurrency(), memory);
}

ThumbnailPool::ThumbnailPool(std::size_t processes, std::string program) : program_(std::move(program)) {
  try {
    for (std::size_t i = 0; i < processes; ++i) threads_.emplace_back([this] { Run(); });
  } catch (const std::system_error&) {
    // The system gives no more threads. Those that run draw all pictures, only more slowly.
    if (threads_.empty()) throw;
  }
}

ThumbnailPool::~ThumbnailPool() {
  {
    const std::scoped_lock lock(mutex_);
    ending_.Request();
  }
  work_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

std::future<Thumbnail> ThumbnailPool::Draw(std::vector<char> bytes, DrawFrom from) {
  const auto way = from == DrawFrom::kLarge   ? DrawLargePicture
                   : from == DrawFrom::kStart ? DrawThumbnailInStart
                                              : DrawThumbnail;
  Task task([this, way, kept = std::move(bytes)](Thumbnailer& thumbnailer) mutable {
    const std::vector<char> file = std::move(kept);
    return way(thumbnailer, file, ending_);
  });
  std::future<Thumbnail> result = task.get_future();
  {
    const std::scoped_lock lock(mutex_);
    queue_.push_back(std::move(task));
  }
  work_.notify_one();
  return result;
}

ThumbnailPool::Task ThumbnailPool::Next() {
  std::unique_lock lock(mutex_);
  work_.wait(lock, [this] { return ending_.Requested() || !queue_.empty(); });
  if (ending_.Requested()) return {};
  Task task = std::move(queue_.front());
  queue_.pop_front();
  return task;
}

void ThumbnailPool::Run() {
  Thumbnailer thumbnailer(program_);
  for (Task task = Next(); task.valid(); task = Next()) task(thumbnailer);
}

}  // namespace apps
