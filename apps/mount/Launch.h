#ifndef KELVA_APPS_MOUNT_LAUNCH_H_
#define KELVA_APPS_MOUNT_LAUNCH_H_

#include <string>
#include <string_view>

#include "apps/commandline/Context.h"

namespace apps {

/// What kelva-mount does for `kelva mount`: in the foreground, in the background, or for all cameras. Throws Failure.
ExitCode RunMount(Context& context);

/// The name under which kelva-mount starts itself once more in the background.
inline constexpr std::string_view kDaemonName = "kelva-mount-daemon";

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_LAUNCH_H_
