#ifndef KELVA_APPS_IMPORT_CUT_FILES_H_
#define KELVA_APPS_IMPORT_CUT_FILES_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/files/NewFile.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/Manifest.h"
#include "apps/import/Pattern.h"
#include "base/FileDescriptor.h"

namespace apps {

/// The part of a file that an earlier run left.
struct Part {
  std::unique_ptr<NewFile> file;
  unsigned long long size = 0;      ///< bytes that are here
  unsigned long long compared = 0;  ///< as CutRow
  std::string sha1;                 ///< as CutRow
};

/// The parts of files whose transfers were cut. They lie in the folders for which their files were meant then, under temporary names, and the
/// manifest knows them: no other temporary file outlives its run. Keeps() may be asked from any thread.
class CutFiles {
 public:
  /// Both outlive this.
  CutFiles(const TargetFolder& target, Manifest& manifest);

  /// Whether a file, by its path below the target, is such a part: sweeps of leftovers leave it alone.
  bool Keeps(const std::string& path) const;

  /// Whether there may be a part of a file.
  bool Has(const ManifestKey& key) const { return Find(key) != nullptr; }

  /// Removes parts of files that will never come. Throws Failure.
  void DropIf(const std::function<bool(const ManifestKey&)>& isGone);

  /// The part of a file of `size` bytes that is to come to `path`, in `folder`, which outlives it. One in another folder, from
  /// a run with another pattern, is brought there. One that does not fit is removed. Nothing without one. Throws Failure.
  std::optional<Part> TakeUp(const ManifestKey& key, unsigned long long size, const LocalPath& path,
                             const TargetFolder& folder);

 private:
  const CutRow* Find(const ManifestKey& key) const;
  base::FileDescriptor FolderOf(const CutRow& row) const;
  bool Bring(CutRow& row, const std::string& path, const TargetFolder& folder);
  void Remove(const CutRow& row);

  const TargetFolder& target_;
  Manifest& manifest_;
  const std::vector<CutRow> rows_;
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_CUT_FILES_H_
