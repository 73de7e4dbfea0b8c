// Removes temporary files of processes that were killed.
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <memory>
#include <vector>

#include "apps/files/FileCalls.h"
#include "apps/files/NewFile.h"

namespace apps {
namespace {

struct CloseDir {
  void operator()(DIR* dir) const { ::closedir(dir); }
};

std::vector<std::string> TemporaryNames(const TargetFolder& folder) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, CloseDir> dir(::fdopendir(OpenBeneath(folder.Fd(), ".", O_RDONLY)));
  if (!dir) return names;
  while (const dirent* entry = ::readdir(dir.get())) {
    const std::string_view name = entry->d_name;
    if (name.starts_with(kTemporaryStart) && name.ends_with(kTemporaryEnd)) names.emplace_back(name);
  }
  return names;
}

}  // namespace

int RemoveLeftovers(const TargetFolder& folder, const std::function<bool(const std::string& name)>& keeps) {
  int removed = 0;
  for (const std::string& name : TemporaryNames(folder)) {
    if (keeps && keeps(name)) continue;
    // A lock that can be had shows that no process writes the file. It is held until the name is gone, so that a process
    // which has only just created the file learns of it.
    // Opened for writing, because NFS locks nothing else.
    const base::FileDescriptor file(OpenBeneath(folder.Fd(), name, O_RDWR | O_NONBLOCK));
    if (!file || ::flock(file.Get(), LOCK_EX | LOCK_NB) != 0) continue;
    if (::unlinkat(folder.Fd(), name.c_str(), 0) == 0) ++removed;
  }
  return removed;
}

}  // namespace apps
