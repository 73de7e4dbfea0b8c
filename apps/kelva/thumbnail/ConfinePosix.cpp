// Confines a process on systems without a filter of system calls that this project knows: resource limits.
#include "apps/kelva/thumbnail/Confine.h"
#include "apps/kelva/thumbnail/Limits.h"

namespace apps {

bool Confine() {
  return LimitResources();
}

}  // namespace apps
