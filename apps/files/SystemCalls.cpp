// The calls that guard a user's files, on Linux.
#include "apps/files/SystemCalls.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "base/FileDescriptor.h"

namespace apps {
namespace {

int Refuse(int error) {
  errno = error;
  return -1;
}

int Openat2(int folder, const char* path, int flags, unsigned mode) {
  open_how how{};
  how.flags = static_cast<unsigned>(flags | O_CLOEXEC);
  how.mode = mode;
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS;
  return static_cast<int>(::syscall(SYS_openat2, folder, path, &how, sizeof how));
}

// Opens one component.
int OpenHere(int folder, const std::string& name, int flags, unsigned mode) {
  return ::openat(folder, name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC, mode);
}

// Keeps the promise of openat2: opens one component after the other and refuses ".." and links.
int WalkBeneath(int folder, const std::string& path, int flags, unsigned mode) {
  const std::size_t slash = path.find('/');
  const std::string first = path.substr(0, slash);
  if (first.empty() || first == "..") return Refuse(EXDEV);
  if (slash == std::string::npos) return OpenHere(folder, first, flags, mode);
  const base::FileDescriptor next(OpenHere(folder, first, O_RDONLY | O_DIRECTORY, 0));
  return next ? WalkBeneath(next.Get(), path.substr(slash + 1), flags, mode) : -1;
}

// Another program can take the name between the look and the renaming; nothing better is left without hard links.
int LookAndRename(int folder, const char* from, const char* to) {
  if (::faccessat(folder, to, F_OK, AT_SYMLINK_NOFOLLOW) == 0) return Refuse(EEXIST);
  return ::renameat(folder, from, folder, to);
}

}  // namespace

int SystemCalls::OpenBelow(int folder, const std::string& path, int flags, unsigned mode) const {
  const int fd = missing_.openat2 != 0 ? Refuse(missing_.openat2) : Openat2(folder, path.c_str(), flags, mode);
  // Some sandboxes answer EPERM to a call that they do not know.
  if (fd != -1 || (errno != ENOSYS && errno != EPERM)) return fd;
  return WalkBeneath(folder, path, flags, mode);
}

int SystemCalls::Open(int folder, const std::string& path, int flags) {
  return OpenBelow(folder, path, flags, 0);
}

int SystemCalls::Create(int folder, const std::string& name) {
  return OpenBelow(folder, name, O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
}

int SystemCalls::MakeFolder(int parent, const std::string& name) {
  return ::mkdirat(parent, name.c_str(), 0777);
}

ssize_t SystemCalls::Write(int file, std::string_view bytes) {
  return ::write(file, bytes.data(), bytes.size());
}

int SystemCalls::SetTime(int file, std::time_t changed) {
  const timespec times[] = {{0, UTIME_OMIT}, {changed, 0}};
  return ::futimens(file, times);
}

void SystemCalls::BeginFlush(int file) noexcept {
  ::sync_file_range(file, 0, 0, SYNC_FILE_RANGE_WRITE);
}

int SystemCalls::Flush(int file) {
  return ::fdatasync(file);
}

int SystemCalls::FlushFolder(int folder) {
  return ::fsync(folder);
}

int SystemCalls::Rename(int folder, const std::string& from, const std::string& to, bool replace) {
  if (replace) return ::renameat(folder, from.c_str(), folder, to.c_str());
  return RenameNoReplace(folder, from.c_str(), to.c_str());
}

int SystemCalls::RenameNoReplace(int folder, const char* from, const char* to) const {
  const int missing = missing_.renameNoReplace;
  const int result = missing != 0 ? Refuse(missing) : ::renameat2(folder, from, folder, to, RENAME_NOREPLACE);
  if (result == 0 || (errno != EINVAL && errno != ENOSYS)) return result;
  return LinkAndUnlink(folder, from, to);
}

// A second name, which fails when it exists; then the first one goes.
int SystemCalls::LinkAndUnlink(int folder, const char* from, const char* to) const {
  const int missing = missing_.hardLinks;
  const int result = missing != 0 ? Refuse(missing) : ::linkat(folder, from, folder, to, 0);
  if (result == 0) return ::unlinkat(folder, from, 0);
  if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS) return result;
  return LookAndRename(folder, from, to);
}

int SystemCalls::Commit(const std::function<int()>& commit) {
  return commit();
}

}  // namespace apps
