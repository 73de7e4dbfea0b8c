// For sanitizer builds: their run time needs address space and system calls without bounds.
#include "apps/decoder/Confine.h"

namespace apps {

bool Confine() {
  return true;
}

}  // namespace apps
