// Finds the processes that use a camera's node, from /proc.

#include "apps/doctor/linux/Holders.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "platform/Process.h"

namespace apps::doctor {
namespace {

namespace fs = std::filesystem;

// A line reads "3: FLOCK  ADVISORY  WRITE 1234 00:05:6789 0 EOF". A process that waits has "->" after the number.
bool IsLockOn(const std::string& line, const FileIdentity& file, int& pid) {
  std::istringstream words(line);
  std::string number, type, manner, mode, where;
  words >> number >> type;
  if (type == "->") words >> type;
  words >> manner >> mode >> pid >> where;
  unsigned major = 0;
  unsigned minor = 0;
  unsigned long inode = 0;
  return words && type == "FLOCK" && pid > 0 && std::sscanf(where.c_str(), "%x:%x:%lu", &major, &minor, &inode) == 3 &&
         major == file.major && minor == file.minor && inode == file.inode;
}

bool HasOpen(const fs::path& process, const struct stat& node) {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(process / "fd", ignored)) {
    struct stat opened;
    if (::stat(entry.path().c_str(), &opened) == 0 && opened.st_dev == node.st_dev && opened.st_ino == node.st_ino) {
      return true;
    }
  }
  return false;
}

int ProcessNumber(const fs::path& directory) {
  const std::string name = directory.filename();
  int pid = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
  return error == std::errc() && end == name.data() + name.size() ? pid : 0;
}

std::set<int> ThoseWith(const struct stat& node) {
  std::set<int> pids;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator("/proc", ignored)) {
    const int pid = ProcessNumber(entry.path());
    if (pid != 0 && HasOpen(entry.path(), node)) pids.insert(pid);
  }
  return pids;
}

}  // namespace

std::vector<int> LockHolders(std::istream& locks, const FileIdentity& file) {
  std::vector<int> holders;
  std::string line;
  while (std::getline(locks, line)) {
    int pid = 0;
    if (IsLockOn(line, file, pid)) holders.push_back(pid);
  }
  return holders;
}

std::vector<Holder> HoldersOf(const std::string& node) {
  struct stat status;
  if (::stat(node.c_str(), &status) != 0) return {};
  std::ifstream locks("/proc/locks");
  const auto locking = LockHolders(locks, {major(status.st_dev), minor(status.st_dev), status.st_ino});
  std::set<int> pids(locking.begin(), locking.end());
  // Programs that wait for the lock have the node open too, and hold nothing.
  if (pids.empty()) pids = ThoseWith(status);
  pids.erase(::getpid());  // the doctor itself may have the node open
  std::vector<Holder> holders;
  holders.reserve(pids.size());
  for (int pid : pids) holders.push_back({pid, platform::ProcessName(pid)});
  return holders;
}

}  // namespace apps::doctor
