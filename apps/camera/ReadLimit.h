#ifndef KELVA_APPS_CAMERA_READ_LIMIT_H_
#define KELVA_APPS_CAMERA_READ_LIMIT_H_

#include <optional>
#include <string>

#include "apps/commandline/Progress.h"

namespace apps {

/// Ends the read of a file that goes on beyond the size that its folder lists, and hands the progress on.
class ReadLimit {
 public:
  using Callback = void (*)(void*, float);

  /// `listed`: nothing when it is not known; then the read ends where the camera says. `next` gets `progress`, which
  /// lives longer. `path` is printable.
  ReadLimit(std::string path, std::optional<unsigned long long> listed, Callback next, Progress& progress)
      : path_(std::move(path)), listed_(listed), next_(next), progress_(progress) {}

  /// The library's progress callback; its context is a ReadLimit. Throws CameraError once more than the listed size has
  /// come, a quarter of a megabyte later at the latest.
  static void Check(void* limit, float fraction);

 private:
  const std::string path_;
  const std::optional<unsigned long long> listed_;
  const Callback next_;
  Progress& progress_;
  unsigned long long calls_ = 0;
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_READ_LIMIT_H_
