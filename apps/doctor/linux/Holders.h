#ifndef KELVA_APPS_DOCTOR_LINUX_HOLDERS_H_
#define KELVA_APPS_DOCTOR_LINUX_HOLDERS_H_

#include <istream>
#include <string>
#include <vector>

#include "apps/doctor/Holder.h"

namespace apps::doctor {

/// A file as the kernel's list of locks names it.
struct FileIdentity {
  unsigned major = 0;
  unsigned minor = 0;
  unsigned long inode = 0;
};

/// The processes that hold or await an flock on the file, read from a list in the format of /proc/locks. Skips lines
/// that it cannot read, and processes of other namespaces, which have no number here.
std::vector<int> LockHolders(std::istream& locks, const FileIdentity& file);

/// The processes, except this one, that hold the node's lock, with their names; when nobody does, those that have the
/// node open. Without root only the locks of other users' processes are visible.
std::vector<Holder> HoldersOf(const std::string& node);

}  // namespace apps::doctor

#endif  // KELVA_APPS_DOCTOR_LINUX_HOLDERS_H_
