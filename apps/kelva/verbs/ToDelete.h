#ifndef KELVA_APPS_KELVA_VERBS_TO_DELETE_H_
#define KELVA_APPS_KELVA_VERBS_TO_DELETE_H_

#include <vector>

#include "apps/camera/ListedSizes.h"
#include "apps/import/Plan.h"
#include "apps/kelva/verbs/Consent.h"

namespace apps {

/// The files of a plan that `sync --delete-after-verify` deletes on the camera, once each is safe here.
std::vector<const SyncItem*> ToDelete(const SyncPlan& plan, ListedSizes& sizes);

/// The same for a person: a line for each picture, "100ABCDE/IMG_0001  JPG RAW", and for each other file.
FewOf InLines(const std::vector<const SyncItem*>& items);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_TO_DELETE_H_
