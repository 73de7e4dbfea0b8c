// Compares the catalogue with the manifest: which files are new, and their names here.
#include "apps/import/Plan.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Picture.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/StoreFile.h"
#include "base/Hex.h"

namespace apps {
namespace {

constexpr std::size_t kIdentityLength = 24;

int TypeNamed(std::string_view name) {
  for (int type = kFirstFileType; type <= kLastFileType; ++type) {
    if (SameName(FileTypeName(type), name)) return type;
  }
  throw Failure(ExitCode::kUsage,
                "\"" + Printable(name) + "\" is not a type of file; the types are jpg, raw, txt and 128.");
}

SyncItem::State StateOf(const std::optional<ManifestRow>& known) {
  if (!known) return SyncItem::State::kNew;
  return known->deleted ? SyncItem::State::kDeleted : SyncItem::State::kFetched;
}

// In the catalogue's order, so that a preview is right and every run gives the same names. Compares 8-byte hashes of
// the names to save memory; a collision only adds an unneeded number.
void NumberNames(std::vector<SyncItem>& items) {
  std::vector<std::pair<std::size_t, SyncItem*>> names;
  names.reserve(items.size());
  for (SyncItem& item : items) names.emplace_back(std::hash<std::string>()(item.Local().Text()), &item);
  std::sort(names.begin(), names.end());
  int number = 0;
  for (std::size_t i = 0; i < names.size(); ++i) {
    number = i > 0 && names[i].first == names[i - 1].first ? number + 1 : 1;
    names[i].second->SetNumber(number);
  }
}

}  // namespace

ManifestKey KeyOf(const DcfObj& picture, int type, const std::string& serial) {
  const std::string identity = base::Hex(std::string_view(reinterpret_cast<const char*>(&picture), kIdentityLength));
  return {serial, identity, type, PictureFingerprint(picture)};
}

std::string SyncItem::CameraPath() const {
  return PicturePath(*picture_, type_);
}

LocalPath SyncItem::Local() const {
  return source_->pattern.Apply(*picture_, type_, source_->serial);
}

std::string SyncItem::LocalText() const {
  LocalPath path = Local();
  path.name = Numbered(path.name, number_);
  return path.Text();
}

std::string SyncItem::ExpectedSha1() const {
  // The key of a catalogue's record is that of the picture's first file.
  return FileTypes(*picture_).front() == type_ ? PictureKey(*picture_).value_or("") : "";
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

SyncPlan MakePlan(std::vector<DcfObj> catalogue, const std::string& serial, const std::vector<int>& types,
                  const Pattern& pattern, Manifest& manifest) {
  SyncPlan plan{std::make_unique<const SyncSource>(SyncSource{std::move(catalogue), serial, pattern}), {}};
  const Manifest::Reading reading(manifest);
  for (const DcfObj& picture : plan.source->catalogue) {
    for (const int type : FileTypes(picture)) {
      if (std::find(types.begin(), types.end(), type) == types.end()) continue;
      SyncItem& item = plan.items.emplace_back(*plan.source, picture, type);
      item.SetState(StateOf(manifest.Find(item.Key())));
    }
  }
  NumberNames(plan.items);
  return plan;
}

}  // namespace apps
