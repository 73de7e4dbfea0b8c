#ifndef KELVA_APPS_MOUNT_SHOWN_FOLDER_H_
#define KELVA_APPS_MOUNT_SHOWN_FOLDER_H_

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "src/wifi/CameraDirent.h"

namespace apps {

/// A file or folder of a camera, as the mounted folder shows it.
struct ShownEntry {
  std::string name;   ///< the camera's bytes
  std::string shown;  ///< as SafeName writes it; empty when that is the same
  std::uint64_t size = 0;
  std::time_t changed = 0;  ///< 0 when nobody knows
  bool isFolder = false;

  const std::string& Shown() const { return shown.empty() ? name : shown; }
};

/// One listing of a camera's folder, as the mounted folder shows it. Does not change once it is made.
class ShownFolder {
 public:
  ShownFolder() = default;
  /// Leaves out labels, the folder itself and its parent, and the second of two entries with one name.
  explicit ShownFolder(const std::vector<CameraDirent>& listed);

  /// In the order of their names.
  const std::vector<ShownEntry>& Entries() const { return entries_; }
  std::vector<ShownEntry>& Entries() { return entries_; }
  /// The entry of this name, exactly as it is written or else in another case of letters, as on a camera. Null when there
  /// is none.
  const ShownEntry* Find(std::string_view shown) const;
  /// The JPEG file of the picture that a file belongs to, which may be the file itself: the name is the same up to the
  /// extension. Null when there is none.
  const ShownEntry* JpegOf(const ShownEntry& entry) const;
  /// How many JPEG files there are.
  std::size_t Jpegs() const { return jpegs_; }

 private:
  std::vector<ShownEntry> entries_;
  std::size_t jpegs_ = 0;
};

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_SHOWN_FOLDER_H_
