#ifndef KELVA_APPS_KELVA_VERBS_SYNC_SUMMARY_H_
#define KELVA_APPS_KELVA_VERBS_SYNC_SUMMARY_H_

#include <cstddef>
#include <optional>

#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/import/Sync.h"

namespace apps {

/// Gives the result of a sync. `known` files were fetched by earlier runs; `ended` is what ended this one early.
ExitCode GiveSummary(Context& context, const Session& camera, const Sync& sync, std::size_t known,
                     const std::optional<Outcome>& ended);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_SYNC_SUMMARY_H_
