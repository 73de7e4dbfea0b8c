#ifndef KELVA_APPS_FILES_FOLDER_LOCK_H_
#define KELVA_APPS_FILES_FOLDER_LOCK_H_

#include <string>
#include <string_view>

#include "apps/files/TargetFolder.h"

namespace apps {

/// The lock file's name. The file is empty and stays: to remove it would let two runs lock two files of one name.
inline constexpr std::string_view kLockName = ".kelva-manifest.lock";

/// Lets only those open a file of the folder who may write into the folder: who can read a file can lock it. Where this
/// is refused, because the file belongs to somebody else, it stays as it is.
void LimitToWriters(const TargetFolder& folder, const std::string& name);

/// Keeps every other `kelva sync` out of a folder while it lives. The lock is on a file that only those can open who may
/// write into the folder: anyone may lock what he can read, a folder included.
class FolderLock {
 public:
  /// Throws Failure: kBusy when another run holds the lock.
  explicit FolderLock(const TargetFolder& folder);

 private:
  base::FileDescriptor file_;
};

}  // namespace apps

#endif  // KELVA_APPS_FILES_FOLDER_LOCK_H_
