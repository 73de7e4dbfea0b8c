#ifndef KELVA_APPS_IMPORT_COMING_H_
#define KELVA_APPS_IMPORT_COMING_H_

#include <algorithm>
#include <optional>
#include <string>

#include "apps/camera/ListedSizes.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/Manifest.h"
#include "apps/import/Plan.h"

namespace apps {

/// Files that are about to be fetched, in numbers.
struct Coming {
  unsigned long long files = 0;
  unsigned long long bytes = 0;     ///< of the files whose size is known
  unsigned long long unlisted = 0;  ///< files that their folder on the camera does not list: their size is not known

  void Add(std::optional<unsigned long long> size);
  void Add(const Coming& more);
  /// Takes bytes off that need not be written.
  void TakeOff(unsigned long long here) { bytes -= std::min(bytes, here); }
  /// "71 files (136.2 MB)", and how many of them have no known size.
  std::string Text() const;
};

/// The size of a file as its folder on the camera lists it; nothing when that is not known.
std::optional<unsigned long long> ListedSize(const SyncItem& item, ListedSizes& sizes);

/// What will be written for a plan: its new files, but for those that are in the target already with the same size (the
/// list of fetched files may have been lost), and without the bytes that are here of files whose transfers were cut.
/// `folder` is null while the target does not exist. Asks the camera for the listings of the folders.
Coming ToBeWritten(const SyncPlan& plan, ListedSizes& sizes, const TargetFolder* folder, Manifest& manifest);

/// Whether a file of this size is in the target under this path. Follows no symbolic link at its end.
bool HasFileOfSize(const TargetFolder& folder, const std::string& path, unsigned long long size);

/// Why `free` bytes in the folder `where` are too few: a sentence, empty when they are enough or not known.
std::string WhyTooLittleRoom(const Coming& coming, std::optional<unsigned long long> free, const std::string& where);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_COMING_H_
