#ifndef KELVA_APPS_FILES_FREE_SPACE_H_
#define KELVA_APPS_FILES_FREE_SPACE_H_

#include <optional>
#include <string>

#include "apps/files/TargetFolder.h"

namespace apps {

/// The bytes that this user may still write to the file system of a folder. Nothing when the file system does not say, as
/// some of a network do not.
std::optional<unsigned long long> FreeSpace(const TargetFolder& folder);
/// As FreeSpace, for a folder that need not exist yet: the nearest one above it that exists is asked.
std::optional<unsigned long long> FreeSpaceFor(const std::string& path);

}  // namespace apps

#endif  // KELVA_APPS_FILES_FREE_SPACE_H_
