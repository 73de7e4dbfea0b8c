#ifndef KELVA_APPS_KELVA_SHEET_DRAWN_BEFORE_H_
#define KELVA_APPS_KELVA_SHEET_DRAWN_BEFORE_H_

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "apps/files/NewFile.h"
#include "apps/files/TargetFolder.h"
#include "apps/thumbnails/Thumbnail.h"
#include "base/FileDescriptor.h"

namespace apps {

/// The thumbnails of the last sheet of a camera, in one file of the user's cache: a sheet that is drawn again reads
/// nothing of pictures that are unchanged. Only a help: what cannot be read or written is drawn again, and nothing is said.
/// The file's bytes are checked as any others.
class DrawnBefore {
 public:
  /// `folder`: where caches of this program are; empty for none. Only the user can read the file.
  DrawnBefore(const std::string& folder, const std::string& serial);
  /// $XDG_CACHE_HOME/kelva, or ~/.cache/kelva; empty when there is neither.
  static std::string Folder();

  /// `key`: 40 digits that name a picture and its state (see Sheet).
  std::optional<Thumbnail> Find(const std::string& key) const;
  /// Keeps a thumbnail for the next sheet.
  void Keep(const std::string& key, const Thumbnail& thumbnail) noexcept;
  /// Replaces what was there by what was kept.
  void Finish() noexcept;

 private:
  struct Place {
    unsigned long long offset;
    std::size_t size;
  };

  void Index();

  std::string name_;
  std::optional<TargetFolder> folder_;
  base::FileDescriptor file_;
  std::unordered_map<std::string, Place> places_;
  std::unique_ptr<NewFile> next_;
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_SHEET_DRAWN_BEFORE_H_
