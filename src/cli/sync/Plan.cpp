#include "sync/Plan.h"

#include <algorithm>
#include <unordered_map>

#include "camera/CameraPath.h"
#include "camera/Picture.h"
#include "files/StoreFile.h"
#include "frame/Failure.h"
#include "frame/Printable.h"

namespace kelva {
namespace {

constexpr std::size_t kIdentityLength = 24;

std::string Identity(const DcfObj& picture) {
  return Hex(std::string_view(reinterpret_cast<const char*>(&picture), kIdentityLength));
}

int TypeNamed(std::string_view name) {
  for (int type = kFirstFileType; type <= kLastFileType; ++type) {
    if (SameName(FileTypeName(type), name)) return type;
  }
  throw Failure(ExitCode::kUsage, "\"" + Printable(name) + "\" is no type of file; there are jpg, raw, txt and 128.");
}

SyncItem MakeItem(const DcfObj& picture, int type, const std::string& serial, const Pattern& pattern) {
  SyncItem item{picture,
                type,
                {serial, Identity(picture), type, PictureFingerprint(picture)},
                pattern.Apply(picture, type, serial),
                1,
                {},
                {}};
  // The key of a catalogue's record is that of the picture's first file.
  if (FileTypes(picture).front() == type) item.expectedSha1 = PictureKey(picture).value_or("");
  return item;
}

}  // namespace

std::string SyncItem::CameraPath() const {
  return PicturePath(picture, type);
}

std::string SyncItem::LocalText() const {
  LocalPath path = local;
  path.name = Numbered(local.name, number);
  return path.Text();
}

std::size_t SyncPlan::NewFiles() const {
  return static_cast<std::size_t>(
      std::count_if(items.begin(), items.end(), [](const SyncItem& i) { return i.IsNew(); }));
}

std::vector<int> ParseTypes(const std::optional<std::string>& list) {
  if (!list) return {1, 2, 3, 4};
  std::vector<int> types;
  std::string_view rest = *list;
  while (true) {
    const std::size_t comma = rest.find(',');
    const int type = TypeNamed(rest.substr(0, comma));
    if (std::find(types.begin(), types.end(), type) == types.end()) types.push_back(type);
    if (comma == std::string_view::npos) return types;
    rest.remove_prefix(comma + 1);
  }
}

SyncPlan MakePlan(const std::vector<DcfObj>& catalogue, const std::string& serial, const std::vector<int>& types,
                  const Pattern& pattern, Manifest& manifest) {
  SyncPlan plan;
  std::unordered_map<std::string, int> seen;
  for (const DcfObj& picture : catalogue) {
    for (const int type : FileTypes(picture)) {
      if (std::find(types.begin(), types.end(), type) == types.end()) continue;
      SyncItem item = MakeItem(picture, type, serial, pattern);
      // In the catalogue's order, so that a preview is right and every run gives the same names.
      item.number = ++seen[item.local.Text()];
      item.known = manifest.Find(item.key);
      plan.items.push_back(std::move(item));
    }
  }
  return plan;
}

}  // namespace kelva
