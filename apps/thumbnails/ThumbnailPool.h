#ifndef KELVA_APPS_THUMBNAILS_THUMBNAIL_POOL_H_
#define KELVA_APPS_THUMBNAILS_THUMBNAIL_POOL_H_

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "apps/commandline/Stop.h"
#include "apps/thumbnails/Thumbnail.h"
#include "apps/thumbnails/Thumbnailer.h"

namespace apps {

/// Draws several pictures at once, each in a process of its own. Used from one thread.
class ThumbnailPool {
 public:
  /// How many processes pay for so many pictures: at most one for each processor, and no more than a quarter of `memory`
  /// (bytes) holds with the largest pictures.
  static std::size_t SizeFor(std::size_t pictures, std::size_t processors, unsigned long long memory);
  /// The same on this machine.
  static std::size_t SizeFor(std::size_t pictures);

  /// `program`: the path of kelva-thumbnail. A process starts with the first picture that it draws.
  explicit ThumbnailPool(std::size_t processes,
                         std::string program = Thumbnailer::ProgramBeside(Thumbnailer::OwnProgram()));
  /// Ends the processes; what is not drawn yet is given up.
  ~ThumbnailPool();
  ThumbnailPool(const ThumbnailPool&) = delete;
  ThumbnailPool& operator=(const ThumbnailPool&) = delete;

  /// Has a JPEG file drawn as soon as a process is free. The result throws what DrawThumbnail throws. The file's memory is
  /// given back before.
  std::future<Thumbnail> Draw(std::vector<char> jpegFile);
  /// As Draw, to be shown large.
  std::future<Thumbnail> DrawLarge(std::vector<char> jpegFile);
  /// As Draw, of the start of a file; the result throws what DrawThumbnailInStart throws.
  std::future<Thumbnail> DrawStart(std::vector<char> start);

 private:
  using Task = std::packaged_task<Thumbnail(Thumbnailer&)>;

  using Way = Thumbnail (*)(Thumbnailer&, std::span<const char>, const Stop&);
  std::future<Thumbnail> Add(std::vector<char> bytes, Way way);
  void Run();
  /// A task without a state at the end.
  Task Next();

  const std::string program_;
  Stop ending_;
  std::mutex mutex_;  // the queue, and that it ends
  std::condition_variable work_;
  std::deque<Task> queue_;
  std::vector<std::thread> threads_;
};

}  // namespace apps

#endif  // KELVA_APPS_THUMBNAILS_THUMBNAIL_POOL_H_
