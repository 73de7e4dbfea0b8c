// Asks a file system how much room it has.
#include "apps/files/FreeSpace.h"

#include <sys/statvfs.h>

#include <cerrno>
#include <filesystem>

namespace apps {
namespace {

std::optional<unsigned long long> Available(const struct statvfs& status) {
  if (status.f_blocks == 0) return std::nullopt;
  return static_cast<unsigned long long>(status.f_bavail) * status.f_frsize;
}

}  // namespace

std::optional<unsigned long long> FreeSpace(const TargetFolder& folder) {
  struct statvfs status {};
  return ::fstatvfs(folder.Fd(), &status) == 0 ? Available(status) : std::nullopt;
}

std::optional<unsigned long long> FreeSpaceFor(const std::string& path) {
  std::error_code error;
  std::filesystem::path folder = std::filesystem::absolute(path, error);
  while (true) {
    struct statvfs status {};
    if (::statvfs(folder.c_str(), &status) == 0) return Available(status);
    if (errno != ENOENT || !folder.has_relative_path()) return std::nullopt;
    folder = folder.parent_path();
  }
}

}  // namespace apps
