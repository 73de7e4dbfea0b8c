// The calls that guard a user's files.
#include "apps/files/SystemCalls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "platform/Files.h"

namespace apps {
namespace {

int Refuse(int error) {
  errno = error;
  return -1;
}

// Another program can take the name between the look and the renaming; nothing better is left without hard links.
int LookAndRename(int folder, const char* from, const char* to) {
  if (::faccessat(folder, to, F_OK, AT_SYMLINK_NOFOLLOW) == 0) return Refuse(EEXIST);
  return ::renameat(folder, from, folder, to);
}

}  // namespace

int SystemCalls::OpenBelow(int folder, const std::string& path, int flags, mode_t mode) const {
  const bool walks = missing_.openBeneath != 0;
  return walks ? platform::WalkBeneath(folder, path, flags, mode) : platform::OpenBeneath(folder, path, flags, mode);
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
  platform::BeginFlush(file);
}

int SystemCalls::Flush(int file) {
  return platform::Flush(file);
}

int SystemCalls::FlushFolder(int folder) {
  return platform::FlushFolder(folder);
}

int SystemCalls::Rename(int folder, const std::string& from, const std::string& to, bool replace) {
  if (replace) return ::renameat(folder, from.c_str(), folder, to.c_str());
  return RenameNoReplace(folder, from.c_str(), to.c_str());
}

int SystemCalls::RenameNoReplace(int folder, const char* from, const char* to) const {
  const int missing = missing_.renameNoReplace;
  const int result = missing != 0 ? Refuse(missing) : platform::RenameNoReplace(folder, from, to);
  if (result == 0 || (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP)) return result;
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

int SystemCalls::Move(int from, const std::string& name, int to) {
  return ::renameat(from, name.c_str(), to, name.c_str());
}

int SystemCalls::Commit(const std::function<int()>& commit) {
  return commit();
}

}  // namespace apps
