#ifndef KELVA_APPS_IMPORT_IMPORT_RUN_H_
#define KELVA_APPS_IMPORT_IMPORT_RUN_H_

#include <functional>
#include <string>

#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/import/Manifest.h"
#include "apps/import/PictureTimes.h"
#include "apps/import/Plan.h"
#include "apps/import/SyncChoice.h"
#include "apps/import/SyncTally.h"

namespace apps {

/// What is to be done for a choice. `folder` is null while the target does not exist. Reads the catalogue, and what the choice
/// needs besides: starts of pictures for their dates, listings of folders for other files.
SyncPlan PlanFor(Context& context, const Session& camera, const SyncChoice& choice, Manifest& manifest,
                 const TargetFolder* folder, PictureTimes& times);

/// Called before anything is read when files are to be deleted on the camera. Throws Failure when they must not be.
using Agree = std::function<void(const Session& camera, const SyncPlan& plan, SyncTally& tally)>;

/// A whole import into the folder `path`, from the camera that the command line means to the command's result. The options
/// --verify and --delete-after-verify count.
ExitCode RunImport(Context& context, const std::string& path, const SyncChoice& choice, const Agree& agree = nullptr);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_IMPORT_RUN_H_
