#ifndef KELVA_APPS_IMPORT_DELETE_FETCHED_H_
#define KELVA_APPS_IMPORT_DELETE_FETCHED_H_

#include <optional>

#include "apps/camera/Explain.h"
#include "apps/camera/ListedSizes.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/Manifest.h"
#include "apps/import/Plan.h"
#include "apps/import/SyncWork.h"

namespace apps {

/// Whether a deletion after the fetch is about a file: one that was deleted on the camera before only where the camera lists it
/// once more, because somebody put it back. Throws as ListFolder does.
bool MayBeDeleted(const SyncItem& item, ListedSizes& sizes);

/// Deletes on the camera what is on disk here, stored by this run or by an earlier one (Deletions). A file that must stay is
/// reported, and the rest goes on. Returns what ended it early; throws Stopped.
std::optional<Outcome> DeleteFetched(SyncWork& work, const SyncPlan& plan, const TargetFolder& folder,
                                     Manifest& manifest);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_DELETE_FETCHED_H_
