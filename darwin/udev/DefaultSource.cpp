// A program with libkelva that names no source sees the cameras of this machine.

#include "darwin/registry/DefaultSource.h"

#include "darwin/udev/UdevSource.h"

namespace darwin {

std::unique_ptr<RegistrySource> DefaultSource() {
  return MakeUdevSource();
}

}  // namespace darwin
