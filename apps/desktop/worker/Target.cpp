// Compares what a camera has with what a folder's list says was imported.
#include "apps/desktop/worker/Target.h"

#include <algorithm>
#include <optional>

#include "apps/commandline/Failure.h"
#include "apps/desktop/worker/PictureEvents.h"
#include "apps/files/FreeSpace.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/Coming.h"
#include "apps/import/Plan.h"

namespace apps {
namespace {

void SetPictures(const SyncPlan& plan, std::span<const FileSizes> sizes, Json& members) {
  std::vector<unsigned> masks(plan.source->catalogue.size());
  Coming files;
  for (const SyncItem& item : plan.items) {
    if (!item.IsNew()) continue;
    const auto index = static_cast<std::size_t>(&item.Picture() - plan.source->catalogue.data());
    masks[index] |= TypeBit(item.Type());
    files.Add(sizes.empty() ? std::nullopt : SizeOf(sizes[index], item.Type()));
  }
  std::string marks;
  for (const unsigned mask : masks) marks += "0123456789abcdef"[mask];
  const auto known = std::count(masks.begin(), masks.end(), 0U);
  members.Set("new", std::move(marks)).Set("new_pictures", masks.size() - static_cast<std::size_t>(known));
  members.Set("new_files", files.files);
  if (!sizes.empty()) members.Set("new_bytes", files.bytes).Set("unlisted", files.unlisted);
}

}  // namespace

Json TargetMembers(const Target& target, const OnCamera& camera) {
  Json members = Json::Object().SetBytes("folder", target.folder);
  try {
    const Pattern pattern(target.pattern.empty() ? std::string(Pattern::kDefault) : target.pattern);
    const std::vector<int> types = ParseTypes(target.types.empty() ? std::nullopt : std::optional(target.types));
    const auto folder = TargetFolder::OpenIfThere(target.folder);
    Manifest manifest = folder ? Manifest(*folder, false) : Manifest();
    SyncPlan plan =
        PlanWithoutNames({camera.pictures.begin(), camera.pictures.end()}, camera.serial, types, pattern, manifest);
    SetPictures(plan, camera.sizes, members);
    if (camera.others != nullptr) {
      AddOthers(plan, *camera.others, false, manifest);  // as an import without --everything counts them
      members.Set("new_others", plan.othersLeftOut).Set("new_others_bytes", plan.othersLeftOutBytes);
    }
    if (const auto free = FreeSpaceFor(target.folder)) members.Set("free", *free);
  } catch (const Failure& failure) {
    members.Set("error", failure.what());
  }
  return members;
}

}  // namespace apps
