#ifndef KELVA_APPS_IMPORT_SYNC_CHOICE_H_
#define KELVA_APPS_IMPORT_SYNC_CHOICE_H_

#include <vector>

#include "apps/camera/PictureChoice.h"
#include "apps/commandline/Context.h"
#include "apps/import/Pattern.h"

namespace apps {

/// What the command line of a sync asks for.
struct SyncChoice {
  Pattern pattern;
  std::vector<int> types;
  bool everything;         ///< also what is not in the catalogue
  PictureChoice pictures;  ///< by folder and date
};

/// Throws Failure(kUsage).
SyncChoice SyncChoiceOf(const Context& context);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_SYNC_CHOICE_H_
