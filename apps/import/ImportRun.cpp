// An import from its first question to its result.
#include "apps/import/ImportRun.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "apps/camera/ListedSizes.h"
#include "apps/camera/PictureList.h"
#include "apps/files/FolderLock.h"
#include "apps/files/FreeSpace.h"
#include "apps/files/NewFile.h"
#include "apps/import/AskTimes.h"
#include "apps/import/Coming.h"
#include "apps/import/CutFiles.h"
#include "apps/import/DeleteFetched.h"
#include "apps/import/Others.h"
#include "apps/import/Sync.h"
#include "apps/import/SyncSummary.h"

namespace apps {
namespace {

// Takes pictures from before the date out. Of new ones, and of those that may be deleted, the start is read for it.
void KeepSince(Context& context, const Session& camera, const PictureChoice& choice, PictureTimes& times,
               SyncPlan& plan) {
  const bool deletes = context.call.Has("delete-after-verify");
  std::vector<const DcfObj*> pictures;
  ListedSizes sizes(*camera);
  for (const SyncItem& item : plan.items) {
    const bool matters = item.IsNew() || (deletes && MayBeDeleted(item, sizes));
    if (matters && (pictures.empty() || pictures.back() != &item.Picture())) pictures.push_back(&item.Picture());
  }
  AskTimes(context, camera.Pointer(), pictures, times);
  std::erase_if(plan.items, [&](const SyncItem& item) {
    const auto taken = times.Of(item.Picture());
    return !choice.IsSince(taken ? std::optional(TakenText(*taken)) : std::nullopt);
  });
}

// Before the first byte is read: a disk that is too small would be full in the middle.
std::optional<Outcome> CheckRoom(Camera& camera, const SyncPlan& plan, const TargetFolder& folder, Manifest& manifest,
                                 Sync& sync) {
  ListedSizes sizes(camera);
  const Coming coming = ToBeWritten(plan, sizes, &folder, manifest);
  sync.Expect(coming.unlisted == 0 ? coming.bytes : 0);
  const std::string why = WhyTooLittleRoom(coming, FreeSpace(folder), folder.Path());
  return why.empty() ? std::nullopt : std::optional(Outcome{ExitCode::kFailed, why});
}

// What earlier processes of this run stored is known to this one, and no longer new. A process that was killed between
// storing and counting leaves one file in doubt.
void BeginTally(const SyncPlan& plan, SyncTally& tally) {
  const unsigned long long before = tally.stored;
  const unsigned long long known = plan.items.size() - plan.NewFiles();
  tally.known = known - std::min(known, before);
  tally.expected = before + plan.NewFiles();
  tally.others = plan.othersLeftOut;
  tally.othersBytes = plan.othersLeftOutBytes;
}

// The counters are those of all processes of this run, and outlive it.
void TellSoFar(const Context& context, Json camera) {
  if (context.soFar == nullptr || context.guard == nullptr) return;
  context.soFar->Tell([tally = std::make_shared<const SyncTally>(context.guard), members = std::move(camera)] {
    return SyncSoFar(tally->Now(), members);
  });
}

}  // namespace

SyncPlan PlanFor(Context& context, const Session& camera, const SyncChoice& choice, Manifest& manifest,
                 const TargetFolder* folder, PictureTimes& times) {
  SyncPlan plan = MakePlan(ReadPictures(*camera), camera.Facts().serial, choice.types, choice.pattern, manifest, folder,
                           TimesForNames(context, camera.Pointer(), times),
                           [&](const DcfObj& picture) { return choice.Means(picture); });
  if (choice.pictures.HasSince()) KeepSince(context, camera, choice.pictures, times, plan);
  if (choice.everything || choice.IsAll()) {
    // They have no dates.
    const bool fetch = choice.everything && !choice.pictures.HasSince();
    AddOthers(plan, FindOthers(context, *camera, plan.source->catalogue), fetch, manifest,
              [&](const OtherFile& file) { return choice.pictures.IsInFolder(file.Folder()); });
  }
  if (plan.items.empty()) choice.pictures.NoteMissingFolder(plan.source->catalogue, context);
  return plan;
}

ExitCode RunImport(Context& context, const std::string& path, const SyncChoice& choice, const Agree& agree) {
  SyncOptions options;
  options.deleteAfter = context.call.Has("delete-after-verify");
  options.verify = context.call.Has("verify");

  TellSoFar(context, Json::Object());
  // First, so that a camera that is not there leaves no folder behind.
  const Session camera(context, "read the picture catalogue");
  TellSoFar(context, CameraResult(camera));
  const TargetFolder folder = TargetFolder::OpenOrMake(path);
  { const NewFile trial(folder); }  // a folder that takes no file is one sentence, before anything is read
  const FolderLock lock(folder);
  Manifest manifest(folder, true);
  const CutFiles cuts(folder, manifest);
  RemoveLeftovers(folder, [&cuts](const std::string& name) { return cuts.Keeps(name); });
  PictureTimes times;
  const SyncPlan plan = PlanFor(context, camera, choice, manifest, &folder, times);
  Sync sync(context, camera.Pointer(), folder, manifest, options, &times);
  BeginTally(plan, sync.Tally());
  if (options.deleteAfter && agree) agree(camera, plan, sync.Tally());
  auto ended = CheckRoom(*camera, plan, folder, manifest, sync);
  if (!ended) ended = sync.Run(plan);
  NoteTrouble(context, times);
  if (plan.others && plan.others->isCut) {
    context.reporter.Note("Some of what is below DCIM and MISC could not be listed; `kelva tree` shows why.");
  }
  return GiveSummary(context, camera, sync.Totals(), ended);
}

}  // namespace apps
