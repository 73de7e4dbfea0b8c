#include "frame/Failure.h"

#include <system_error>

namespace kelva {

Failure SystemFailure(const std::string& doing, int error) {
  return Failure(ExitCode::kFailed, "Cannot " + doing + ": " + std::generic_category().message(error) + ".", error);
}

}  // namespace kelva
