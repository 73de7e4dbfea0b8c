#ifndef KELVA_APPS_MOUNT_SOURCE_H_
#define KELVA_APPS_MOUNT_SOURCE_H_

#include <optional>
#include <string>
#include <string_view>

namespace apps {

/// What a mount says of its camera: "Kelva K1", safe as a name and in a list of options.
std::string SourceOf(std::string_view serial);
/// Where the camera with this serial number is mounted; nothing when it is not.
std::optional<std::string> MountOf(std::string_view serial);

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_SOURCE_H_
