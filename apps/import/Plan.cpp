// Compares the catalogue with the manifest: which files are new, and their names here.
#include "apps/import/Plan.h"

#include <algorithm>
#include <span>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Picture.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/StoreFile.h"
#include "apps/import/Names.h"
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

// The items of one picture, which share a number.
void NumberItems(Names& names, std::span<SyncItem> items, const std::optional<ManifestRow>& stored) {
  const bool isNew = std::any_of(items.begin(), items.end(), [](const SyncItem& item) { return item.IsNew(); });
  if (!isNew) return;
  const DcfObj& picture = items.front().Picture();
  const int number = stored ? names.NumberFor(picture, stored->path, stored->key.type) : names.NumberFor(picture);
  for (SyncItem& item : items) item.SetNumber(number);
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
                  const Pattern& pattern, Manifest& manifest, const TargetFolder* folder) {
  SyncPlan plan{std::make_unique<const SyncSource>(SyncSource{std::move(catalogue), serial, pattern}), {}};
  const Manifest::Reading reading(manifest);
  Names names(folder, plan.source->pattern, serial);
  for (const DcfObj& picture : plan.source->catalogue) {
    const std::size_t first = plan.items.size();
    std::optional<ManifestRow> stored;
    for (const int type : FileTypes(picture)) {
      auto known = manifest.Find(KeyOf(picture, type, serial));
      if (std::find(types.begin(), types.end(), type) != types.end()) {
        plan.items.emplace_back(*plan.source, picture, type).SetState(StateOf(known));
      }
      if (known && !stored) stored = std::move(known);
    }
    const std::span<SyncItem> items(plan.items.begin() + static_cast<std::ptrdiff_t>(first), plan.items.end());
    if (!items.empty()) NumberItems(names, items, stored);
  }
  return plan;
}

}  // namespace apps
