#ifndef KELVA_APPS_DESKTOP_WORKER_VERBS_H_
#define KELVA_APPS_DESKTOP_WORKER_VERBS_H_

#include "apps/commandline/Context.h"
#include "apps/commandline/Program.h"

// What a worker of the window does, one function for each kind (README.md).

namespace apps {

ExitCode RunWatch(Context& context);
ExitCode RunCamera(Context& context);
ExitCode RunImportForWindow(Context& context);

/// kelva-desktop-worker as the command line's machinery sees it.
const Program& DesktopWorker();

}  // namespace apps

#endif  // KELVA_APPS_DESKTOP_WORKER_VERBS_H_
