#ifndef KELVA_APPS_MOUNT_ERRORS_H_
#define KELVA_APPS_MOUNT_ERRORS_H_

#include <exception>
#include <stdexcept>

namespace apps {

/// An error that a program gets from the mounted folder as it is.
class SystemError : public std::runtime_error {
 public:
  explicit SystemError(int error) : std::runtime_error("the file system"), error_(error) {}
  int Error() const { return error_; }

 private:
  int error_;
};

/// What a program gets for an exception of the camera or of the tool: ENODEV when the camera has gone, EBUSY when another
/// program keeps it, ETIMEDOUT when it does not answer, ENOSPC and the like from this machine's disk, otherwise EIO.
int ErrnoOf(const std::exception& error);

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_ERRORS_H_
