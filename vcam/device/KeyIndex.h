#ifndef KELVA_VCAM_DEVICE_KEY_INDEX_H_
#define KELVA_VCAM_DEVICE_KEY_INDEX_H_

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "vcam/device/Storage.h"

namespace vcam {

/// Length of a key: the SHA-1 of a file's bytes in lower-case hexadecimal.
inline constexpr std::size_t kKeyLength = 40;

/// A file below DCIM, found by its key.
struct KeyedFile {
  std::string path;
  std::uint64_t size = 0;
};

/// The keys of all files below DCIM. A file is read again only when its size, times or inode have changed, or when it
/// changed just before the last reading, so that its times may not show a second change.
class KeyIndex {
 public:
  /// Brings the index up to date with the storage.
  void Refresh(const Storage& storage);
  /// The files with these bytes, by path; as of the last Refresh.
  std::vector<KeyedFile> Find(const std::string& key) const;
  /// The key of one file, read now unless it is known; empty when it cannot be read.
  std::string KeyOf(const Storage& storage, const std::string& path, const FileStamp& stamp);

 private:
  struct Known {
    FileStamp stamp;
    std::string key;
    bool settled = false;
    bool seen = false;
  };

  void Visit(const Storage& storage, const std::string& directory, int depth);
  void DropUnseen();

  std::map<std::string, Known> known_;
  std::multimap<std::string, std::string> byKey_;
};

/// Whether the whole text is a key.
bool IsKey(std::string_view text);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_KEY_INDEX_H_
