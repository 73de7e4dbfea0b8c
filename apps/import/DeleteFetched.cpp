// Deletes the fetched files of a plan on the camera.
#include "apps/import/DeleteFetched.h"

#include <string>
#include <vector>

#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"
#include "apps/import/Deletions.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

std::vector<const SyncItem*> Fetched(const SyncPlan& plan, Manifest& manifest) {
  std::vector<const SyncItem*> items;
  const Manifest::Reading reading(manifest);
  for (const SyncItem& item : plan.items) {
    if (!item.IsDeleted() && manifest.Find(item.Key())) items.push_back(&item);
  }
  return items;
}

}  // namespace

std::optional<Outcome> DeleteFetched(SyncWork& work, const SyncPlan& plan, const TargetFolder& folder,
                                     Manifest& manifest) {
  Deletions deletions(*work.files.Pointer(), folder, manifest,
                      [&work](const SyncItem& item) { return work.HashOnCamera(item); });
  // All files of a picture go in one turn.
  const SyncItem* last = nullptr;
  const auto letOthers = [&](const SyncItem& item) {
    if ((last == nullptr || !last->IsWith(item)) && LetOthers(work.context)) deletions.Renew();
    last = &item;
  };
  try {
    const std::vector<const SyncItem*> items = Fetched(plan, manifest);
    deletions.Expect(items);
    SyncTally& tally = work.report.Tally();
    tally.toDelete = tally.deleted + items.size();
    work.ForEach(items, {"deleting", "delete", letOthers}, [&](const SyncItem& item) {
      const std::string why = deletions.Delete(item);
      why.empty() ? work.report.Deleted(item) : work.report.Fail(item, why);
    });
    deletions.Finish();
  } catch (const CameraError& error) {
    return Explain(error, work.context);
  } catch (const Failure& failure) {
    return Outcome{failure.Code(), failure.what()};
  }
  return std::nullopt;
}

}  // namespace apps
