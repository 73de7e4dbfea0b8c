// Turns errno into a sentence that also says what to do.
#include "apps/commandline/Failure.h"

#include <cerrno>
#include <system_error>

namespace apps {
namespace {

std::string AdviceFor(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
      return "; make room there and try again";
    case ENOENT:
      return "; check the name";
    case ENOTDIR:
      return "; name a folder";
    case EROFS:
      return "; choose another place, or have it mounted for writing";
    case EACCES:
    case EPERM:
      return "; choose another place, or change its permissions";
    default:
      return "";
  }
}

}  // namespace

Failure SystemFailure(const std::string& doing, int error) {
  return Failure(ExitCode::kFailed,
                 "Cannot " + doing + ": " + std::generic_category().message(error) + AdviceFor(error) + ".", error);
}

}  // namespace apps
