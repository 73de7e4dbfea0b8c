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

std::vector<const SyncItem*> Fetched(Camera& camera, const SyncPlan& plan, Manifest& manifest) {
  std::vector<const SyncItem*> items;
  ListedSizes sizes(camera);
  for (const SyncItem& item : plan.items) {
    if (MayBeDeleted(item, sizes)) items.push_back(&item);
  }
  const Manifest::Reading reading(manifest);
  std::erase_if(items, [&](const SyncItem* item) { return !manifest.Find(item->Key()); });
  return items;
}

}  // namespace

bool MayBeDeleted(const SyncItem& item, ListedSizes& sizes) {
  return !item.IsDeleted() || sizes.SizeOf(item.CameraPath()).has_value();
}

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
    const std::vector<const SyncItem*> items = Fetched(*work.files.Pointer(), plan, manifest);
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
