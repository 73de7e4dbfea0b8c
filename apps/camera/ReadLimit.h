#ifndef KELVA_APPS_CAMERA_READ_LIMIT_H_
#define KELVA_APPS_CAMERA_READ_LIMIT_H_

#include <optional>
#include <string>

#include "apps/commandline/Progress.h"
#include "src/wifi/CameraError.h"

namespace apps {

/// The most that is read of a file that its folder does not list, or that is asked for by its key.
inline constexpr unsigned long long kMostUnlisted = 256ULL << 20;
/// The most that is read of a bundle: all crash logs, or all calibration files.
inline constexpr unsigned long long kLargestBundle = 64ULL << 20;

/// The error of a file that the camera announces with another size than its folder gives it, or with more than
/// kMostUnlisted where no folder lists it.
CameraError WronglyAnnounced(std::optional<unsigned long long> listed, unsigned long long announced);

/// Ends a read of a bundle that goes on beyond its bound, and hands the progress on.
class ReadLimit {
 public:
  using Callback = void (*)(void*, float);

  /// A bundle of at most `most` bytes. `what` is printable: "the crash logs". `next` gets `progress`, which lives longer.
  static ReadLimit OfBundle(const std::string& what, unsigned long long most, Callback next, Progress& progress);

  /// The library's progress callback; its context is a ReadLimit. Throws CameraError once more than the bound has come, one
  /// chunk later at the latest.
  static void Check(void* limit, float fraction);

 private:
  ReadLimit(std::string claim, unsigned long long most, Callback next, Progress& progress);

  std::string claim_;  // what the bound is, as the start of a sentence
  unsigned long long most_;
  Callback next_;
  Progress& progress_;
  unsigned long long received_;  // before the next call
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_READ_LIMIT_H_
