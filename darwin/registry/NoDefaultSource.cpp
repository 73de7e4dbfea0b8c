// Programs and tests of the tree name their source; one that names none sees an empty registry.

#include "darwin/registry/DefaultSource.h"

namespace darwin {

std::unique_ptr<RegistrySource> DefaultSource() {
  return nullptr;
}

}  // namespace darwin
