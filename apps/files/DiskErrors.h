#ifndef KELVA_APPS_FILES_DISK_ERRORS_H_
#define KELVA_APPS_FILES_DISK_ERRORS_H_

#include <cerrno>

namespace apps {

/// Whether every other file would fail too after this errno of writing one.
inline bool EndsAllWriting(int error) {
  return error == ENOSPC || error == EDQUOT || error == EROFS || error == EIO || error == ESTALE || error == ENODEV;
}

}  // namespace apps

#endif  // KELVA_APPS_FILES_DISK_ERRORS_H_
