#ifndef KELVA_APPS_MOUNT_MOUNT_H_
#define KELVA_APPS_MOUNT_MOUNT_H_

#include "apps/commandline/Context.h"

namespace apps {

/// Mounts a camera and serves it until it is unmounted, unplugged, or the command is stopped. Throws Failure.
ExitCode MountHere(Context& context);

/// The same in the background: gives the terminal back, and the descriptors of whoever started it, when the mount stands.
ExitCode MountAsDaemon(Context& context);

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_MOUNT_H_
