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

/// What is drawn, and from which bytes. The most urgent first.
enum class DrawFrom {
  kLarge,  ///< a whole file, to be shown large
  kStart,  ///< the start of a file: its EXIF thumbnail
  kWhole,  ///< a thumbnail of a whole file
};

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

  /// Has a picture drawn as soon as a process is free. The result throws what the functions of Thumbnail.h throw. The bytes'
  /// memory is given back before.
  std::future<Thumbnail> Draw(std::vector<char> bytes, DrawFrom from = DrawFrom::kWhole);

 private:
  using Task = std::packaged_task<Thumbnail(Thumbnailer&)>;

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
