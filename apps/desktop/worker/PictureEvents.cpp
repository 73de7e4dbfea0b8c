// The pictures of a camera as events, and what of them a folder's list does not have.
#include "apps/desktop/worker/PictureEvents.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

#include "apps/camera/Picture.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Words.h"
#include "apps/files/FreeSpace.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/Coming.h"
#include "apps/import/Plan.h"

namespace apps {
namespace {

// A type in a sum of types: 1 JPG, 2 RAW, 4 TXT, 8 128.
constexpr unsigned TypeBit(int type) {
  return 1U << static_cast<unsigned>(type - kFirstFileType);
}

// The plan has all types, so that what the folder lacks is known of those too that are not meant.
void SetPictures(const SyncPlan& plan, const std::vector<int>& meant, const OnCamera& camera, Json& members) {
  std::vector<unsigned> masks(plan.source->catalogue.size());
  std::set<std::size_t> pictures;
  Coming files;
  for (const SyncItem& item : plan.items) {
    if (!item.IsNew()) continue;
    const auto index = static_cast<std::size_t>(&item.Picture() - plan.source->catalogue.data());
    masks[index] |= TypeBit(item.Type());
    if (std::find(meant.begin(), meant.end(), item.Type()) == meant.end()) continue;
    pictures.insert(index);
    files.Add(camera.HasSizes() ? SizeOf(camera.sizes[index], item.Type()) : std::nullopt);
  }
  std::string marks;
  for (const unsigned mask : masks) marks += "0123456789abcdef"[mask];
  members.Set("new", std::move(marks)).Set("new_pictures", pictures.size());
  members.Set("new_files", files.files);
  if (camera.HasSizes()) members.Set("new_bytes", files.bytes).Set("unlisted", files.unlisted);
}

}  // namespace

void SortHighestFirst(std::vector<DcfObj>& pictures) {
  const auto order = [](const DcfObj& picture) {
    return std::make_tuple(picture.directoryNumber,
                           std::string_view(picture.directorySuffix, sizeof picture.directorySuffix),
                           picture.fileNumber, std::string_view(picture.filePrefix, sizeof picture.filePrefix));
  };
  std::stable_sort(pictures.begin(), pictures.end(),
                   [&order](const DcfObj& a, const DcfObj& b) { return order(a) > order(b); });
}

Json PicturesMembers(std::size_t from, std::span<const DcfObj> pictures) {
  Json items = Json::Array();
  for (const DcfObj& picture : pictures) {
    unsigned types = 0;
    for (const int type : FileTypes(picture)) types |= TypeBit(type);
    Json item = Json::Array();
    item.Push(EncodedWord(PictureFolder(picture))).Push(EncodedWord(PictureStem(picture)));
    items.Push(item.Push(types).Push(PictureTime(picture).value_or("")));
  }
  return Json::Object().Set("from", from).Set("items", std::move(items));
}

Json SizesMembers(std::size_t from, std::span<const DcfObj> pictures, std::span<const FileSizes> sizes) {
  Json items = Json::Array();
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    Json item = Json::Array();
    for (const int type : FileTypes(pictures[i])) {
      const auto size = SizeOf(sizes[i], type);
      item.Push(size ? Json(*size) : Json());
    }
    items.Push(item);
  }
  return Json::Object().Set("from", from).Set("items", std::move(items));
}

Json TargetMembers(const Target& target, const OnCamera& camera, const std::string& serial) {
  Json members = Json::Object().SetBytes("folder", target.folder);
  try {
    const Pattern pattern(target.pattern.empty() ? std::string(Pattern::kDefault) : target.pattern);
    const std::vector<int> types = ParseTypes(target.types.empty() ? std::nullopt : std::optional(target.types));
    const auto folder = TargetFolder::OpenIfThere(target.folder);
    Manifest manifest = folder ? Manifest(*folder, false) : Manifest();
    SyncPlan plan = PlanWithoutNames(camera.pictures, serial, ParseTypes(std::nullopt), pattern, manifest);
    SetPictures(plan, types, camera, members);
    if (camera.others) {
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
