#ifndef KELVA_APPS_KELVA_VERBS_SYNC_PREVIEW_H_
#define KELVA_APPS_KELVA_VERBS_SYNC_PREVIEW_H_

#include <string>

#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/Manifest.h"
#include "apps/import/Plan.h"

namespace apps {

/// Where a sync would store.
struct PreviewTarget {
  const std::string& path;
  const TargetFolder* folder;  ///< null while it does not exist
  Manifest& manifest;
};

/// Gives what a sync would do, as the result of `sync --dry-run`: names, sizes, totals and free space.
ExitCode ShowPlan(Context& context, const Session& camera, const SyncPlan& plan, const PreviewTarget& target);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_SYNC_PREVIEW_H_
