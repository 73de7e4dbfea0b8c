#ifndef KELVA_APPS_MOUNT_EXIF_TIMES_H_
#define KELVA_APPS_MOUNT_EXIF_TIMES_H_

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace apps {

/// The dates that were read in pictures' JPEG files, for as long as the camera is mounted. 16 bytes a picture, and bounded.
/// One thread at a time.
class ExifTimes {
 public:
  explicit ExifTimes(std::size_t most = 131'072) : most_(most) {}

  /// The date in the JPEG file at this path of the camera, 0 when the file has none. Nothing when nobody has looked, or when
  /// the file had another size then.
  std::optional<std::time_t> Find(const std::string& path, std::uint64_t size) const;
  void Keep(const std::string& path, std::uint64_t size, std::time_t time);
  /// The file is written anew.
  void Forget(const std::string& path, std::uint64_t size);

 private:
  using Entry = std::pair<std::size_t, std::time_t>;  // by hash of path and size

  const std::size_t most_;
  std::vector<Entry> entries_;  // in order
};

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_EXIF_TIMES_H_
