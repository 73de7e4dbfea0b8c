#ifndef KELVA_APPS_IMPORT_FOLDERS_H_
#define KELVA_APPS_IMPORT_FOLDERS_H_

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "apps/files/TargetFolder.h"
#include "apps/import/Pattern.h"

namespace apps {

/// The folders below a target into which one run stores files. Any thread.
class Folders {
 public:
  /// Whether the sweep has to leave a temporary file, by its path below the target.
  using Keeps = std::function<bool(const std::string& path)>;
  /// `target` outlives this.
  explicit Folders(const TargetFolder& target, Keeps keeps = nullptr) : target_(target), keeps_(std::move(keeps)) {}

  /// The folder of a file, made if need be. What killed runs left in it is removed when the run asks for it first, and
  /// only then. Throws Failure.
  std::shared_ptr<const TargetFolder> For(const LocalPath& path);
  /// Tries once whether the folder of a file takes one. Throws Failure when permissions or the disk are in the way, as they
  /// would be in other folders. Otherwise returns what is in the way of all files of this folder, such as a symbolic link in
  /// its place; the same sentence each time, empty for nothing.
  std::string Try(const LocalPath& path);
  /// The names of the folders that lead to a file, from the target on.
  using Way = std::vector<std::string>;
  /// Puts the names in some folders on disk, and the names of the folders that lead there. One call at a time; throws
  /// Failure.
  void Flush(const std::set<Way>& ways);

 private:
  std::string WhyNot(const LocalPath& path);
  void FlushNewNamesIn(const Way& way);

  const TargetFolder& target_;
  const Keeps keeps_;
  std::mutex mutex_;
  // Keyed by the path below the target, with a slash at the end; the target itself is "".
  std::map<std::string, std::shared_ptr<const TargetFolder>> open_;
  std::set<std::string> seen_;                // also those that were closed since
  std::map<std::string, std::string> tried_;  // with what is in the way
  std::set<std::string> unflushed_;           // with a folder in them whose name may not be on disk
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_FOLDERS_H_
