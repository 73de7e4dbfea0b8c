#ifndef KELVA_VCAM_DEVICE_PRIVATE_FOLDER_H_
#define KELVA_VCAM_DEVICE_PRIVATE_FOLDER_H_

#include <filesystem>

#include "base/FileDescriptor.h"

namespace vcam {

/// A folder of this object's own below the system's folder for temporary files (TMPDIR), which ends with it. A process that
/// is killed leaves its folder behind; the next one of the same user removes it.
class PrivateFolder {
 public:
  /// Throws std::runtime_error with one sentence.
  PrivateFolder();
  ~PrivateFolder();
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }

 private:
  bool Make(const std::filesystem::path& below);

  std::filesystem::path path_;
  base::FileDescriptor lock_;  // of the folder: while it is held, the folder is in use
};

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_PRIVATE_FOLDER_H_
