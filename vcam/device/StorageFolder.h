#ifndef KELVA_VCAM_DEVICE_STORAGE_FOLDER_H_
#define KELVA_VCAM_DEVICE_STORAGE_FOLDER_H_

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "base/FileDescriptor.h"

namespace vcam {

/// Differs when a file has changed since the last look.
struct FileStamp {
  std::uint64_t size = 0;
  std::int64_t modifiedNs = 0;
  std::int64_t changedNs = 0;
  std::uint64_t inode = 0;
  bool operator==(const FileStamp&) const = default;
};

/// One file or directory of the storage.
struct StorageEntry {
  std::string name;
  bool isDirectory = false;
  bool isReadOnly = false;
  FileStamp stamp;
};

/// A file that was opened, or the errno that says why not.
struct OpenedFile {
  base::FileDescriptor file;
  int error = 0;
  FileStamp stamp{};
};

/// A folder on this machine. Paths are relative to it, separated by '/', as RelativePath makes them; the kernel resolves
/// them below the folder and follows no symbolic link, so nothing outside is ever reached. Only regular files and
/// directories exist for the camera.
class StorageFolder {
 public:
  /// Throws std::runtime_error with one sentence when the folder is missing, not a folder, or unreadable.
  explicit StorageFolder(const std::filesystem::path& folder);

  OpenedFile OpenForReading(const std::string& path) const;
  /// Creates the file, or empties it; its directory must exist.
  OpenedFile OpenForWriting(const std::string& path) const;
  /// Deletes a file, never a directory. Returns 0 or the errno.
  int Remove(const std::string& path) const;
  /// Returns 0 or the errno; a directory that exists already is success.
  int MakeDirectory(const std::string& path) const;
  /// Whether this is a directory.
  bool HasDirectory(const std::string& path) const;
  /// The entries of a directory by name, without "." and ".."; empty when there is no such directory. Names that a
  /// camera path cannot hold are left out.
  std::vector<StorageEntry> List(const std::string& path) const;
  /// Replaces a small file as a whole, through a temporary file and a rename. Returns 0 or the errno.
  int Replace(const std::string& path, std::string_view content, unsigned mode) const;

 private:
  base::FileDescriptor OpenBeneath(const std::string& path, int flags) const;
  base::FileDescriptor OpenParent(const std::string& path) const;

  base::FileDescriptor root_;
};

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_STORAGE_FOLDER_H_
