#ifndef KELVA_APPS_KELVA_DOCTOR_HOLDERS_H_
#define KELVA_APPS_KELVA_DOCTOR_HOLDERS_H_

#include <filesystem>
#include <istream>
#include <string>
#include <vector>

#include "apps/kelva/doctor/Facts.h"

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
/// node open. Without root only the locks of other users' processes are visible. `proc` is "/proc".
std::vector<Holder> HoldersOf(const std::string& node, const std::filesystem::path& proc = "/proc");

/// The name of a process; "a process" when it has ended or hides it.
std::string ProcessName(int pid, const std::filesystem::path& proc = "/proc");

/// The holders as part of a sentence: "photos (process 4711), kelva (process 4712)".
std::string InWords(const std::vector<Holder>& holders);

}  // namespace apps::doctor

#endif  // KELVA_APPS_KELVA_DOCTOR_HOLDERS_H_
