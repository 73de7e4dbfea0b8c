#ifndef KELVA_APPS_MOUNT_SOURCE_H_
#define KELVA_APPS_MOUNT_SOURCE_H_

#include <optional>
#include <string>
#include <string_view>

namespace apps {

/// The name of a camera's folder in the home folder: "Kelva K1".
std::string FolderNameOf(std::string_view serial);
/// What a mount says of its camera, safe in a list of options. Cameras of different virtual buses, whose path `bus` is,
/// may have the same serial number; of the machine's own cameras it is the name of the folder.
std::string SourceOf(std::string_view serial, const std::optional<std::string>& bus);
/// Where the camera with this serial number is mounted; nothing when it is not.
std::optional<std::string> MountOf(std::string_view serial, const std::optional<std::string>& bus);

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_SOURCE_H_
