// What files have in common on every system.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/Files.h"

namespace platform {
namespace {

// Where a folder is asked for, some systems say of a link that it is none. The kernel's own call says ELOOP.
int OpenHere(int folder, const std::string& name, int flags, mode_t mode) {
  const int result = ::openat(folder, name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC, mode);
  if (result >= 0 || errno != ENOTDIR) return result;
  struct stat status {};
  const bool isLink = ::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
  errno = isLink ? ELOOP : ENOTDIR;
  return result;
}

void CloseKeepingError(int descriptor) {
  const int error = errno;
  ::close(descriptor);
  errno = error;
}

}  // namespace

int WalkBeneath(int folder, const std::string& path, int flags, mode_t mode) {
  const std::size_t slash = path.find('/');
  const std::string first = path.substr(0, slash);
  if (path.empty() || first.empty() || first == "..") {
    errno = path.empty() ? ENOENT : EXDEV;
    return -1;
  }
  if (slash == std::string::npos) return OpenHere(folder, first, flags, mode);
  const std::size_t rest = path.find_first_not_of('/', slash);
  if (rest == std::string::npos) return OpenHere(folder, first, flags | O_DIRECTORY, mode);
  const int next = OpenHere(folder, first, O_RDONLY | O_DIRECTORY, 0);
  if (next < 0) return next;
  const int result = WalkBeneath(next, path.substr(rest), flags, mode);
  CloseKeepingError(next);
  return result;
}

int OpenBeneath(int folder, const std::string& path, int flags, mode_t mode,
                int (&atOnce)(int, const char*, int, mode_t)) {
  const int result = atOnce(folder, path.c_str(), flags, mode);
  // Some sandboxes answer EPERM to a call that they do not know.
  if (result >= 0 || (errno != ENOSYS && errno != EPERM)) return result;
  return WalkBeneath(folder, path, flags, mode);
}

}  // namespace platform
