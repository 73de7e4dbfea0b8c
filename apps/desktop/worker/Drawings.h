#ifndef KELVA_APPS_DESKTOP_WORKER_DRAWINGS_H_
#define KELVA_APPS_DESKTOP_WORKER_DRAWINGS_H_

#include <cstddef>
#include <deque>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/thumbnails/ThumbnailPool.h"

namespace apps {

/// Which picture is drawn, and from what.
struct DrawingOf {
  std::size_t index;
  enum class From { kStart, kWhole, kLarge } from;

  bool operator==(const DrawingOf&) const = default;
};

/// What became of it.
struct Drawn {
  DrawingOf of;
  std::optional<Thumbnail> thumbnail = {};
  std::string reason = {};  ///< why there is none, as the end of a sentence
  bool needsWhole = false;  ///< the start of the file has no thumbnail
};

/// Pictures that are being drawn, several at once. Belongs to one thread.
class Drawings {
 public:
  /// The processes that draw start with the first picture.
  void Add(DrawingOf of, std::vector<char> bytes);
  /// Whether as many are being drawn as keep all processes busy.
  bool IsFull() const { return drawing_.size() >= 2 * kProcesses; }
  bool IsEmpty() const { return drawing_.empty(); }
  bool Has(const DrawingOf& of) const;
  /// One that has been drawn meanwhile, if there is one. Throws Failure when no picture can be drawn here.
  std::optional<Drawn> Take();

 private:
  struct One {
    DrawingOf of;
    std::future<Thumbnail> result;
  };
  static constexpr std::size_t kProcesses = 4;

  std::unique_ptr<ThumbnailPool> pool_;
  std::deque<One> drawing_;
};

}  // namespace apps

#endif  // KELVA_APPS_DESKTOP_WORKER_DRAWINGS_H_
