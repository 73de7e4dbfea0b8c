#ifndef KELVA_APPS_IMPORT_SYNC_SUMMARY_H_
#define KELVA_APPS_IMPORT_SYNC_SUMMARY_H_

#include <optional>
#include <string>
#include <string_view>

#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/SoFar.h"
#include "apps/import/Sync.h"

namespace apps {

/// Gives the result of a sync; `ended` is what ended it early.
ExitCode GiveSummary(Context& context, const Session& camera, const SyncTotals& totals,
                     const std::optional<Outcome>& ended);

/// "8 other files (1.2 GB) below DCIM and MISC were not fetched; --everything fetches them." Empty when there are none.
/// `since`: they were left out because they have no dates.
std::string OthersInWords(unsigned long long files, unsigned long long bytes, bool since);
/// A count of the result, and its member there. `left` is besides.
struct SyncCount {
  std::string_view name;
  unsigned long long SyncTotals::*value;
};
inline constexpr SyncCount kSyncCounts[] = {
    {"stored", &SyncTotals::stored},
    {"bytes", &SyncTotals::bytes},
    {"already_here", &SyncTotals::alreadyHere},
    {"checked", &SyncTotals::checked},
    {"read_twice", &SyncTotals::readTwice},
    {"size_only", &SyncTotals::sizeOnly},
    {"unlike_key", &SyncTotals::unlikeKey},
    {"numbered", &SyncTotals::numbered},
    {"undated", &SyncTotals::undated},
    {"resumed", &SyncTotals::resumed},
    {"known", &SyncTotals::known},
    {"others", &SyncTotals::others},
    {"others_bytes", &SyncTotals::othersBytes},
    {"failed", &SyncTotals::failed},
    {"deleted", &SyncTotals::deleted},
    {"to_delete", &SyncTotals::toDelete},
};

/// The counts as the result shows them, in lines; `early` for a run that something ended, `since` as above.
std::string SyncInWords(const SyncTotals& totals, bool early, bool since);
/// The counts as members of the result, behind those that are there.
Json SyncMembers(const SyncTotals& totals, Json members);

/// What a sync says that a signal or the time-out ends; `camera` are the members that name the camera.
SoFar::Done SyncSoFar(const SyncTotals& totals, Json camera);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_SYNC_SUMMARY_H_
