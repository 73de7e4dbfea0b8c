#ifndef KELVA_DARWIN_REGISTRY_DEFAULT_SOURCE_H_
#define KELVA_DARWIN_REGISTRY_DEFAULT_SOURCE_H_

#include <memory>

#include "darwin/registry/Registry.h"

namespace darwin {

/// The source of a program that names none, asked for at its first look at the registry; null for none. The build chooses
/// between two definitions: NoDefaultSource.cpp, and for libkelva darwin/udev/DefaultSource.cpp.
std::unique_ptr<RegistrySource> DefaultSource();

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_DEFAULT_SOURCE_H_
