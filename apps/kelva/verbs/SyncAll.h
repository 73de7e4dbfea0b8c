#ifndef KELVA_APPS_KELVA_VERBS_SYNC_ALL_H_
#define KELVA_APPS_KELVA_VERBS_SYNC_ALL_H_

#include "apps/commandline/Context.h"

namespace apps {

/// `kelva sync --all`: one process of this tool for each attached camera, each with the same options and a folder of its
/// own below FOLDER, and one summary. Throws Stopped, and Failure.
ExitCode RunSyncAll(Context& context);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_SYNC_ALL_H_
