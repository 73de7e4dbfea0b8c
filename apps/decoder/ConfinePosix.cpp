// Confines a process on systems without a filter of system calls that this project knows: resource limits.
#include "apps/decoder/Confine.h"
#include "apps/decoder/Limits.h"

namespace apps {

bool Confine() {
  return LimitResources();
}

}  // namespace apps
