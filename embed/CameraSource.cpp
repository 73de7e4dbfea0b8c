// Says why there are no cameras, in the words of the registry's source.

#include "embed/CameraSource.h"

#include "darwin/registry/Registry.h"

namespace kelva {

std::string LastSourceError() {
  const darwin::Registry& registry = darwin::Registry::Shared();
  const std::string failure = registry.LastSourceError();
  return failure.empty() ? registry.WhyDeaf() : failure;
}

}  // namespace kelva
