#ifndef KELVA_APPS_KELVA_VERBS_SYNC_PREVIEW_H_
#define KELVA_APPS_KELVA_VERBS_SYNC_PREVIEW_H_

#include <string>

#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/import/Plan.h"

namespace apps {

/// Gives what a sync into `target` would do, as the result of `sync --dry-run`: names, sizes, totals and free space.
ExitCode ShowPlan(Context& context, const Session& camera, const SyncPlan& plan, const std::string& target);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_SYNC_PREVIEW_H_
