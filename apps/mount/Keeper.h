#ifndef KELVA_APPS_MOUNT_KEEPER_H_
#define KELVA_APPS_MOUNT_KEEPER_H_

#include <sys/types.h>

#include <string>

#include "base/FileDescriptor.h"

namespace apps {

/// A process that outlives this one and unmounts a folder when this one is killed: a mount without its program is a folder
/// that nobody can open or remove.
class Keeper {
 public:
  /// Starts it, before the folder is mounted. `removes`: whether it then removes the folder too. Throws Failure.
  Keeper(const std::string& path, bool removes);
  /// Ends it: nothing is mounted any more.
  ~Keeper();
  Keeper(const Keeper&) = delete;
  Keeper& operator=(const Keeper&) = delete;

  pid_t Process() const { return process_; }

 private:
  base::FileDescriptor lifeline_;  // hangs up when this process ends
  pid_t process_ = 0;
};

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_KEEPER_H_
