#ifndef KELVA_APPS_MOUNT_TIMES_H_
#define KELVA_APPS_MOUNT_TIMES_H_

#include <chrono>
#include <cstddef>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "apps/mount/ShownFolder.h"
#include "src/wifi/Camera.h"

namespace apps {

/// When pictures were taken, as the camera's catalogue says. A listing has no times. 16 bytes a picture. One thread.
class Times {
 public:
  /// Sets the times of the pictures in a folder below DCIM. Reads the catalogue when it has not been read yet, and again, not
  /// too often, for a picture that it did not have. What goes wrong leaves times out. True when a command was sent.
  bool Fill(Camera& camera, const std::string& path, ShownFolder& folder);

 private:
  using Clock = std::chrono::steady_clock;

  void Read(Camera& camera);
  std::time_t Of(const std::string& path) const;

  std::vector<std::pair<std::size_t, std::time_t>> times_;  // by hash of the path without its extension
  bool wasRead_ = false;
  Clock::time_point again_;  // not before
};

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_TIMES_H_
