#ifndef KELVA_APPS_KELVA_VERBS_SYNC_PREVIEW_H_
#define KELVA_APPS_KELVA_VERBS_SYNC_PREVIEW_H_

#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/import/Plan.h"

namespace apps {

/// Gives what a sync would do, as the result of `sync --dry-run`.
ExitCode ShowPlan(Context& context, const Session& camera, const SyncPlan& plan);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_SYNC_PREVIEW_H_
