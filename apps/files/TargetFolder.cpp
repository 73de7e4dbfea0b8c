// Opens the folder that files go into, and resolves names below it without following links.
#include "apps/files/TargetFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/FileCalls.h"
#include "platform/Files.h"

namespace apps {
namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

void MakeFolder(int parent, const std::string& name, const std::string& path) {
  if (UntilDone([&] { return FileCalls::Current().MakeFolder(parent, name); }) == 0 || errno == EEXIST) return;
  throw SystemFailure("make the folder " + Printable(path), errno);
}

// Keeps errno: a link has to be told from other failures.
bool IsLink(int parent, const std::string& name) {
  const int saved = errno;
  struct stat status {};
  const bool isLink = ::fstatat(parent, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
  errno = saved;
  return isLink;
}

// Some file systems cannot flush a folder and say EINVAL; their renames are as safe as they get.
void FlushFolder(int folder, const std::string& path) {
  if (UntilDone([folder] { return FileCalls::Current().FlushFolder(folder); }) == 0 || errno == EINVAL) return;
  throw SystemFailure("flush the folder " + Printable(path), errno);
}

// The folder above the last name of a path; empty where that is the current one or the root.
std::string Above(const std::string& path) {
  const std::size_t end = path.find_last_not_of('/');
  const std::size_t slash = end == std::string::npos ? end : path.rfind('/', end);
  return slash == std::string::npos ? "" : path.substr(0, slash);
}

bool IsMissing(const std::string& path) {
  return ::access(path.c_str(), F_OK) != 0 && errno == ENOENT;
}

// What a script passes when a variable is unset.
void RequireName(const std::string& path) {
  if (path.empty()) throw Failure(ExitCode::kUsage, "The name of the folder is empty; use . for the current one.");
}

}  // namespace

std::optional<TargetFolder> TargetFolder::OpenIfThere(const std::string& path) {
  const bool missing = ::access(path.c_str(), F_OK) != 0 && errno == ENOENT;
  return missing ? std::nullopt : std::optional(Open(path));
}

TargetFolder TargetFolder::OpenOrMakeMissing(const std::string& path) {
  auto folder = OpenIfThere(path);
  return folder ? *std::move(folder) : OpenOrMake(path);
}

TargetFolder TargetFolder::Open(const std::string& path) {
  RequireName(path);
  base::FileDescriptor folder(::open(path.c_str(), kFolderFlags));
  if (!folder) throw SystemFailure("open the folder " + Printable(path), errno);
  return TargetFolder(std::move(folder), path);
}

TargetFolder TargetFolder::OpenOrMake(const std::string& path) {
  RequireName(path);
  const std::string above = Above(path);
  if (!above.empty() && IsMissing(above)) OpenOrMake(above);
  MakeFolder(AT_FDCWD, path, path);
  TargetFolder folder = Open(path);
  // Also when the folder was there: whoever made it may have done so a moment ago. A parent that this user may not read
  // cannot be flushed.
  const base::FileDescriptor parent(::openat(folder.Fd(), "..", kFolderFlags));
  if (parent) FlushFolder(parent.Get(), folder.PathOf(".."));
  return folder;
}

TargetFolder TargetFolder::Below(const std::string& name) const {
  MakeFolder(Fd(), name, PathOf(name));
  base::FileDescriptor folder(OpenBeneath(Fd(), name, kFolderFlags));
  if (!folder && IsLink(Fd(), name)) {
    throw Failure(ExitCode::kFailed, Printable(PathOf(name)) +
                                         " is a symbolic link and is not followed; replace it by a folder or choose "
                                         "another target.");
  }
  if (!folder) throw SystemFailure("open the folder " + Printable(PathOf(name)), errno);
  return TargetFolder(std::move(folder), PathOf(name));
}

std::string TargetFolder::PathOf(const std::string& name) const {
  if (path_ == ".") return name;
  return path_.ends_with('/') ? path_ + name : path_ + "/" + name;
}

bool TargetFolder::Has(const std::string& name) const {
  struct stat status {};
  return ::fstatat(Fd(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

mode_t TargetFolder::UsualMode() const {
  // Two threads may find out at once; both find the same.
  mode_t mode = usualMode_->load(std::memory_order_relaxed);
  if (mode != kUnknownMode) return mode;
  mode = platform::ModeOfNewFile(Fd());
  usualMode_->store(mode, std::memory_order_relaxed);
  return mode;
}

void TargetFolder::Sync() const {
  FlushFolder(Fd(), path_);
}

}  // namespace apps
