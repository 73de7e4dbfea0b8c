// Threads that have pictures drawn, each by a process of its own.
#include "apps/kelva/sheet/ThumbnailPool.h"

#include <algorithm>
#include <utility>

namespace apps {

std::size_t ThumbnailPool::SizeFor(std::size_t pictures) {
  const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
  return std::min(processors, pictures);
}

ThumbnailPool::ThumbnailPool(std::size_t processes, std::string program) : program_(std::move(program)) {
  for (std::size_t i = 0; i < processes; ++i) threads_.emplace_back([this] { Run(); });
}

ThumbnailPool::~ThumbnailPool() {
  {
    const std::scoped_lock lock(mutex_);
    ending_.Request();
  }
  work_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

std::future<Thumbnail> ThumbnailPool::Draw(std::vector<char> jpegFile) {
  Task task([this, file = std::move(jpegFile)](Thumbnailer& thumbnailer) mutable {
    const std::vector<char> bytes = std::move(file);
    return DrawThumbnail(thumbnailer, bytes, ending_);
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
