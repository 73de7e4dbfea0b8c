#ifndef KELVA_VCAM_DEVICE_STORAGE_H_
#define KELVA_VCAM_DEVICE_STORAGE_H_

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "vcam/device/StorageFolder.h"
#include "wire/Command.h"

namespace vcam {

/// Who sees what a host writes and deletes: everyone, in the storage folder, or the hosts of this camera alone.
enum class Keep : bool { kInFolder, kInView };

/// Drive I: of the camera, over a storage folder. With Keep::kInView the folder never changes: what hosts write lies in
/// a private folder below the system's folder for temporary files, which ends with this object, and what they delete is
/// hidden. Hosts see the same as with Keep::kInFolder, but for one thing: the folder's own permissions on its
/// directories forbid nothing.
class Storage {
 public:
  /// Throws std::runtime_error with one sentence when the folder is missing, not a folder, or unreadable.
  explicit Storage(const std::filesystem::path& folder, Keep keep = Keep::kInFolder);
  ~Storage();
  Storage(Storage&&) noexcept;

  // These do what the members of StorageFolder do.

  OpenedFile OpenForReading(const std::string& path) const;
  OpenedFile OpenForWriting(const std::string& path) const;
  int Remove(const std::string& path) const;
  int MakeDirectory(const std::string& path) const;
  bool HasDirectory(const std::string& path) const;
  std::vector<StorageEntry> List(const std::string& path) const;
  int Replace(const std::string& path, std::string_view content, unsigned mode) const;

 private:
  struct View;
  OpenedFile OpenBelow(const std::string& path) const;
  int PrepareToWrite(const std::string& path) const;

  StorageFolder folder_;
  /// What the hosts have changed; null when they change the folder.
  std::unique_ptr<View> view_;
};

/// The sense data with which the camera refuses a command that ended in this errno.
wire::Sense SenseOfErrno(int error);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_STORAGE_H_
