#ifndef KELVA_DARWIN_UDEV_UDEV_SOURCE_H_
#define KELVA_DARWIN_UDEV_UDEV_SOURCE_H_

#include <functional>
#include <memory>
#include <string>

#include "darwin/registry/Registry.h"

namespace darwin {

/// Fills the registry with the cameras of this machine, from udev. What a program with libkelva uses when it names no
/// source (DefaultSource.cpp); this project's own programs name theirs.
/// Sentences that the user or the journal should see (no permission, no udev) go to `report`, on any thread; without one
/// they are lines on standard error.
std::unique_ptr<RegistrySource> MakeUdevSource(const std::function<void(const std::string&)>& report = {});

}  // namespace darwin

#endif  // KELVA_DARWIN_UDEV_UDEV_SOURCE_H_
