#ifndef KELVA_APPS_DESKTOP_WORKER_WATCH_H_
#define KELVA_APPS_DESKTOP_WORKER_WATCH_H_

#include <functional>
#include <vector>

#include "apps/commandline/Context.h"
#include "apps/doctor/Finding.h"

namespace apps {

/// Tells the window which cameras come and go, and what keeps one from being used, until `context.stop` is requested: throws
/// Stopped. `look` finds what is in the way. Once per process.
void WatchCameras(Context& context, const std::function<std::vector<doctor::Finding>()>& look);

}  // namespace apps

#endif  // KELVA_APPS_DESKTOP_WORKER_WATCH_H_
