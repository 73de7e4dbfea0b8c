#ifndef KELVA_APPS_DOCTOR_LINUX_MOUNTS_H_
#define KELVA_APPS_DOCTOR_LINUX_MOUNTS_H_

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/doctor/Finding.h"

namespace apps::doctor {

/// Stands between a virtual camera and the path of its bus in the source of a mount.
inline constexpr std::string_view kOfBus = " of %2F";

/// A camera that is mounted as a folder (`kelva mount`).
struct MountedCamera {
  std::string source;  ///< what the mount says of its camera: "Kelva K1"
  std::string path;
};

/// The cameras in a text of the form of /proc/self/mountinfo.
std::vector<MountedCamera> MountsIn(std::string_view mountinfo);
/// The cameras that are mounted now, by whatever user.
std::vector<MountedCamera> Mounts();

/// Whether a mount was left over by a program that was killed: nobody answers for it.
bool IsLeftOver(const MountedCamera& mount);
/// One finding for each mount.
std::vector<Finding> FindingsAbout(const std::vector<MountedCamera>& mounts,
                                   const std::function<bool(const MountedCamera&)>& isLeftOver);

}  // namespace apps::doctor

#endif  // KELVA_APPS_DOCTOR_LINUX_MOUNTS_H_
