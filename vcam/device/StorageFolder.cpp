// A folder on this machine. No path and no link leads out of it.
#include "vcam/device/StorageFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "base/SendAll.h"
#include "platform/Files.h"
#include "vcam/device/CameraPath.h"

namespace vcam {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr mode_t kModeOfFiles = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;

std::int64_t Nanoseconds(const timespec& time) {
  return time.tv_sec * kNanosecondsPerSecond + time.tv_nsec;
}

FileStamp StampOf(const struct stat& status) {
  return {static_cast<std::uint64_t>(status.st_size), Nanoseconds(platform::ContentChanged(status)),
          Nanoseconds(platform::StatusChanged(status)), status.st_ino};
}

std::string NameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

bool ReadEntry(int directory, const char* name, StorageEntry& entry) {
  struct stat status {};
  if (!IsCameraName(name) || ::fstatat(directory, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
  if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) return false;
  entry.name = name;
  entry.isDirectory = S_ISDIR(status.st_mode);
  entry.isReadOnly = (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
  entry.stamp = StampOf(status);
  return true;
}

OpenedFile RegularFile(base::FileDescriptor file) {
  if (!file) return {{}, errno};
  struct stat status {};
  if (::fstat(file.Get(), &status) != 0) return {{}, errno};
  if (!S_ISREG(status.st_mode)) return {{}, EISDIR};
  return {std::move(file), 0, StampOf(status)};
}

}  // namespace

StorageFolder::StorageFolder(const std::filesystem::path& folder)
    : root_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (!root_) {
    throw std::runtime_error("Cannot use " + folder.string() + " as the camera's storage: " + std::strerror(errno) +
                             "; name a folder that you may read.");
  }
}

base::FileDescriptor StorageFolder::OpenBeneath(const std::string& path, int flags) const {
  return base::FileDescriptor(
      platform::OpenBeneath(root_.Get(), path.empty() ? "." : path, flags | O_NONBLOCK, kModeOfFiles));
}

base::FileDescriptor StorageFolder::OpenParent(const std::string& path) const {
  const std::size_t end = path.rfind('/');
  return OpenBeneath(end == std::string::npos ? "" : path.substr(0, end), O_RDONLY | O_DIRECTORY);
}

OpenedFile StorageFolder::OpenForReading(const std::string& path) const {
  return RegularFile(OpenBeneath(path, O_RDONLY));
}

OpenedFile StorageFolder::OpenForWriting(const std::string& path) const {
  // Emptied only once it is known to be a regular file.
  OpenedFile opened = RegularFile(OpenBeneath(path, O_RDWR | O_CREAT));
  if (opened.file && ::ftruncate(opened.file.Get(), 0) != 0) return {{}, errno};
  return opened;
}

int StorageFolder::Remove(const std::string& path) const {
  const base::FileDescriptor parent = OpenParent(path);
  if (!parent) return errno;
  StorageEntry entry;
  if (!ReadEntry(parent.Get(), NameOf(path).c_str(), entry)) return ENOENT;
  return ::unlinkat(parent.Get(), entry.name.c_str(), 0) == 0 ? 0 : errno;
}

int StorageFolder::MakeDirectory(const std::string& path) const {
  const base::FileDescriptor parent = OpenParent(path);
  if (!parent) return errno;
  if (::mkdirat(parent.Get(), NameOf(path).c_str(), 0755) == 0) return 0;
  return errno == EEXIST && HasDirectory(path) ? 0 : errno;
}

bool StorageFolder::HasDirectory(const std::string& path) const {
  return static_cast<bool>(OpenBeneath(path, O_RDONLY | O_DIRECTORY));
}

std::vector<StorageEntry> StorageFolder::List(const std::string& path) const {
  std::vector<StorageEntry> entries;
  base::FileDescriptor file = OpenBeneath(path, O_RDONLY | O_DIRECTORY);
  if (!file) return entries;
  const Directory directory(::fdopendir(file.Get()));
  if (!directory) return entries;
  file.Release();
  while (const dirent* found = ::readdir(directory.get())) {
    StorageEntry entry;
    if (ReadEntry(::dirfd(directory.get()), found->d_name, entry)) entries.push_back(std::move(entry));
  }
  std::sort(entries.begin(), entries.end(),
            [](const StorageEntry& a, const StorageEntry& b) { return a.name < b.name; });
  return entries;
}

int StorageFolder::Replace(const std::string& path, std::string_view content, unsigned mode) const {
  const base::FileDescriptor parent = OpenParent(path);
  if (!parent) return errno;
  const std::string name = NameOf(path);
  const std::string temporary = name + ".new";
  const base::FileDescriptor file(
      ::openat(parent.Get(), temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, mode));
  if (!file) return errno;
  if (const int error = base::WriteAll(file.Get(), content); error != 0) return error;
  return ::renameat(parent.Get(), temporary.c_str(), parent.Get(), name.c_str()) == 0 ? 0 : errno;
}

}  // namespace vcam
