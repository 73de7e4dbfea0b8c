#ifndef KELVA_APPS_IMPORT_NUMBERS_HERE_H_
#define KELVA_APPS_IMPORT_NUMBERS_HERE_H_

#include <map>
#include <set>
#include <string>

#include "apps/files/TargetFolder.h"
#include "apps/import/Manifest.h"
#include "apps/import/Plan.h"
#include "apps/import/SyncWork.h"

namespace apps {

/// Finds the number under which a picture's files are in the target although the list does not have them: it may have been
/// lost. All of them, or none: where a JPG is the same and the RAW beside it another, both go elsewhere. A file without a
/// key is read from the camera for that, if one of its listed size is here. Belongs to the thread that reads.
class NumbersHere {
 public:
  /// All outlive this.
  NumbersHere(SyncWork& work, const SyncPlan& plan, const TargetFolder& folder, Manifest& manifest)
      : work_(work), plan_(plan), folder_(folder), manifest_(manifest) {}

  /// The number for a file: the same for all files of its picture. Throws CameraError, Stopped, Failure of the manifest.
  int For(const SyncItem& item);

 private:
  int Find(const SyncItem& item, const Names::Numbers& numbers);
  bool Fits(const SyncItem& item, int number);
  bool IsSame(const SyncItem& file, const std::string& path, unsigned long long size);

  SyncWork& work_;
  const SyncPlan& plan_;
  const TargetFolder& folder_;
  Manifest& manifest_;
  std::map<const DcfObj*, int> found_;
  std::set<std::string> taken_;        // names of first files, beside which this run stores others
  std::map<int, std::string> hashes_;  // of the picture that is looked for, by type
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_NUMBERS_HERE_H_
