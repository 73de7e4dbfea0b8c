#ifndef KELVA_APPS_CAMERA_READ_LIMIT_H_
#define KELVA_APPS_CAMERA_READ_LIMIT_H_

#include <optional>
#include <string>

#include "apps/commandline/Progress.h"

namespace apps {

/// The most that is read of a file that its folder does not list, or that is asked for by its key.
inline constexpr unsigned long long kMostUnlisted = 256ULL << 20;
/// The most that is read of a bundle: all crash logs, or all calibration files.
inline constexpr unsigned long long kLargestBundle = 64ULL << 20;

/// Ends a read that goes on beyond its bound, and hands the progress on.
class ReadLimit {
 public:
  using Callback = void (*)(void*, float);

  /// A file: the bound is the size that its folder lists, or kMostUnlisted where it lists none. `next` gets `progress`,
  /// which lives longer. `path` is printable.
  ReadLimit(const std::string& path, std::optional<unsigned long long> listed, Callback next, Progress& progress);
  /// A bundle of at most `most` bytes. `what` is printable: "the crash logs".
  static ReadLimit OfBundle(const std::string& what, unsigned long long most, Callback next, Progress& progress);

  /// The library's progress callback; its context is a ReadLimit. Throws CameraError once more than the bound has come, a
  /// quarter of a megabyte later at the latest.
  static void Check(void* limit, float fraction);

 private:
  ReadLimit(unsigned long long interval, Callback next, Progress& progress)
      : interval_(interval), next_(next), progress_(progress) {}

  std::string claim_;  // what the bound is, as the start of a sentence
  unsigned long long most_ = 0;
  unsigned long long interval_;  // between two calls
  Callback next_;
  Progress& progress_;
  unsigned long long received_ = 0;  // before the next call
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_READ_LIMIT_H_
