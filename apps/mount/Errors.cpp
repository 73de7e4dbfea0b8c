// What a program that uses the mounted folder gets for a failure.
#include "apps/mount/Errors.h"

#include <cerrno>
#include <new>

#include "apps/camera/Explain.h"
#include "apps/commandline/Failure.h"

namespace apps {

int ErrnoOf(const std::exception& error) {
  if (const auto* system = dynamic_cast<const SystemError*>(&error)) return system->Error();
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return ENOMEM;
  if (const auto* failure = dynamic_cast<const Failure*>(&error); failure != nullptr && failure->SystemError() != 0) {
    return failure->SystemError();
  }
  switch (Explain(error, "").code) {
    case ExitCode::kGone:
      return ENODEV;
    case ExitCode::kBusy:
      return EBUSY;
    case ExitCode::kTimedOut:
      return ETIMEDOUT;
    default:
      return EIO;
  }
}

}  // namespace apps
