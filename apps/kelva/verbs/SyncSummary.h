#ifndef KELVA_APPS_KELVA_VERBS_SYNC_SUMMARY_H_
#define KELVA_APPS_KELVA_VERBS_SYNC_SUMMARY_H_

#include <optional>
#include <string>

#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/SoFar.h"
#include "apps/import/Sync.h"

namespace apps {

/// Gives the result of a sync; `ended` is what ended it early.
ExitCode GiveSummary(Context& context, const Session& camera, const SyncTotals& totals,
                     const std::optional<Outcome>& ended);

/// "8 other files (1.2 GB) below DCIM and MISC were not fetched; --everything fetches them." Empty when there are none.
std::string OthersInWords(unsigned long long files, unsigned long long bytes);

/// What a sync says that a signal or the time-out ends; `camera` are the members that name the camera.
SoFar::Done SyncSoFar(const SyncTotals& totals, Json camera);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_SYNC_SUMMARY_H_
