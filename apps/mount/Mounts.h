#ifndef KELVA_APPS_MOUNT_MOUNTS_H_
#define KELVA_APPS_MOUNT_MOUNTS_H_

#include <string>
#include <string_view>
#include <vector>

namespace apps {

/// A camera that this machine has mounted.
struct MountedCamera {
  std::string source;  ///< as SourceOf writes it
  std::string path;
};

/// The type of such a mount, as /proc/self/mountinfo says it.
inline constexpr std::string_view kMountType = "fuse.kelva";

/// What a mount says of its camera: "Kelva K1", safe as a name and in a list of options.
std::string SourceOf(std::string_view serial);
/// The cameras in a text of the form of /proc/self/mountinfo.
std::vector<MountedCamera> MountsIn(std::string_view mountinfo);
/// The cameras that are mounted now, by whatever user.
std::vector<MountedCamera> Mounts();

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_MOUNTS_H_
