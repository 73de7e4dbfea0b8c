// A folder for what hosts write, and the end of those that killed processes have left.
#include "vcam/device/PrivateFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vcam {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kStart = "kelva-vcam-view-";
constexpr std::string_view kRandom = "XXXXXX";  // what mkdtemp replaces

/// The folder, locked; nothing when it is no folder of this user alone, or another process has the lock.
base::FileDescriptor Lock(const fs::path& path) {
  base::FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  struct stat status {};
  const bool ours = folder && ::fstat(folder.Get(), &status) == 0 && status.st_uid == ::geteuid() &&
                    (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
  if (!ours || ::flock(folder.Get(), LOCK_EX | LOCK_NB) != 0) folder.Reset();
  return folder;
}

void RemoveLeftovers(const fs::path& below) {
  std::error_code error;
  for (fs::directory_iterator entry(below, error), end; !error && entry != end; entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (!name.starts_with(kStart) || name.size() != kStart.size() + kRandom.size()) continue;
    // Held until the folder is gone, so that a process which has only just made it learns of it.
    const base::FileDescriptor lock = Lock(entry->path());
    std::error_code refused;
    if (lock) fs::remove_all(entry->path(), refused);
  }
}

}  // namespace

PrivateFolder::PrivateFolder() {
  const fs::path below = fs::temp_directory_path();
  RemoveLeftovers(below);
  // Again when another process took the newborn folder for a leftover.
  constexpr int kAttempts = 100;
  for (int i = 0; i < kAttempts; ++i) {
    if (Make(below)) return;
  }
  throw std::runtime_error("Cannot lock a folder for what hosts write (" + path_.string() +
                           "); set TMPDIR to a folder on another file system.");
}

PrivateFolder::~PrivateFolder() {
  std::error_code error;
  fs::remove_all(path_, error);
}

bool PrivateFolder::Make(const fs::path& below) {
  std::string name = (below / (std::string(kStart) + std::string(kRandom))).string();
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("Cannot make a folder for what hosts write (" + name + "): " + std::strerror(errno) +
                             "; set TMPDIR to a folder that you may write.");
  }
  path_ = name;
  lock_ = Lock(path_);
  if (!lock_) ::rmdir(path_.c_str());  // a file system without locks would keep it for good
  return lock_ && ::access(path_.c_str(), F_OK) == 0;
}

}  // namespace vcam
