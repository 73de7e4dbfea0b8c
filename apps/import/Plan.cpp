// Compares the catalogue with the manifest: which files are new, and their names here.
#include "apps/import/Plan.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Picture.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/StoreFile.h"

namespace apps {
namespace {

int TypeNamed(std::string_view name) {
  for (int type = kFirstFileType; type <= kLastFileType; ++type) {
    if (SameName(FileTypeName(type), name)) return type;
  }
  throw Failure(ExitCode::kUsage,
                "\"" + Printable(name) + "\" is not a type of file; the types are jpg, raw, txt and 128.");
}

SyncItem::State StateOf(const KnownPicture& known, int type) {
  const auto row = known.rows.find(type);
  if (row == known.rows.end()) return SyncItem::State::kNew;
  return row->second.deleted ? SyncItem::State::kDeleted : SyncItem::State::kFetched;
}

// Where the picture's files were stored, those included that the camera no longer has.
Names::Stored StoredOf(KnownPicture known) {
  Names::Stored stored;
  for (auto& [type, row] : known.rows) {
    if (!row.IsLetGo()) stored.emplace(type, std::move(row.path));
  }
  return stored;
}

/// Of pictures with new files, those that were fetched before.
using StoredFiles = std::unordered_map<const DcfObj*, Names::Stored>;

// Makes a plan with an item for each file of the types asked for.
SyncPlan PlanOf(SyncSource from, const std::vector<int>& types, Manifest& manifest,
                const std::function<bool(const DcfObj&)>& isMeant, StoredFiles& files) {
  auto made = std::make_unique<SyncSource>(std::move(from));
  SyncSource& source = *made;
  SyncPlan plan{std::move(made), {}};
  const Manifest::Reading reading(manifest);
  for (const DcfObj& picture : source.catalogue) {
    if (isMeant && !isMeant(picture)) continue;
    KnownPicture known = FindPicture(manifest, picture, source.serial);
    if (!known.IsPlain(picture)) source.listed.emplace(&picture, known);
    bool isNew = false;
    for (const int type : FileTypes(picture)) {
      if (std::find(types.begin(), types.end(), type) == types.end()) continue;
      plan.items.emplace_back(source, picture, type).SetState(StateOf(known, type));
      isNew = isNew || !known.Has(type);
    }
    if (!isNew) continue;
    Names::Stored stored = StoredOf(std::move(known));
    if (!stored.empty()) files.emplace(&picture, std::move(stored));
  }
  return plan;
}

std::vector<const DcfObj*> NewPictures(const SyncPlan& plan) {
  std::vector<const DcfObj*> pictures;
  for (const SyncItem& item : plan.items) {
    if (item.IsNew() && (pictures.empty() || pictures.back() != &item.Picture())) pictures.push_back(&item.Picture());
  }
  return pictures;
}

// All items of a picture with a new file share a number.
void NumberItems(SyncPlan& plan, Names names, const StoredFiles& stored) {
  for (auto item = plan.items.begin(); item != plan.items.end();) {
    const DcfObj& picture = item->Picture();
    const auto end = std::find_if(item, plan.items.end(), [&](const SyncItem& i) { return &i.Picture() != &picture; });
    if (std::any_of(item, end, [](const SyncItem& i) { return i.IsNew(); })) {
      const auto own = stored.find(&picture);
      const auto numbers = own == stored.end() ? names.NumbersFor(picture) : names.NumbersFor(picture, own->second);
      for (auto numbered = item; numbered != end; ++numbered) numbered->SetNumber(numbers.Likely());
      if ((numbers.maybe != 0 || numbers.before != 0) && !item->IsAlone()) plan.doubts.emplace(&picture, numbers);
    }
    item = end;
  }
}

}  // namespace

ManifestKey SyncSource::Key(const DcfObj& picture, int type) const {
  ManifestKey key = KeyOf(picture, type, serial);
  const auto known = listed.find(&picture);
  if (known == listed.end()) return key;
  const auto row = known->second.rows.find(type);
  key.fingerprint = row == known->second.rows.end() ? known->second.fingerprint : row->second.key.fingerprint;
  return key;
}

ManifestKey SyncItem::Key() const {
  return IsPicture() ? source_->Key(*picture_, type_) : other_->Key(source_->serial);
}

std::string SyncItem::CameraPath() const {
  return IsPicture() ? PicturePath(*picture_, type_) : other_->path;
}

bool SyncItem::IsAlone() const {
  return !IsPicture() || FileTypes(*picture_).size() == 1;
}

LocalPath SyncItem::Local() const {
  return IsPicture() ? source_->Local(*picture_, type_) : other_->Local();
}

std::string SyncItem::LocalText() const {
  LocalPath path = Local();
  path.name = Numbered(path.name, number_);
  return path.Text();
}

std::string SyncItem::ExpectedSha1() const {
  // The key of a catalogue's record is that of the picture's first file.
  return IsPicture() && FileTypes(*picture_).front() == type_ ? PictureKey(*picture_).value_or("") : "";
}

std::size_t SyncPlan::NewFiles() const {
  return static_cast<std::size_t>(
      std::count_if(items.begin(), items.end(), [](const SyncItem& i) { return i.IsNew(); }));
}

bool SyncPlan::MayHave(const ManifestKey& key) const {
  if (key.type == 0) {
    return !others || others->isCut ||
           std::any_of(others->files.begin(), others->files.end(),
                       [&](const OtherFile& file) { return file.Key(source->serial) == key; });
  }
  return std::any_of(source->catalogue.begin(), source->catalogue.end(), [&](const DcfObj& picture) {
    const std::vector<int> types = FileTypes(picture);
    return std::find(types.begin(), types.end(), key.type) != types.end() && source->Key(picture, key.type) == key;
  });
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
                  const Pattern& pattern, Manifest& manifest, const TargetFolder* folder, PlanTimes times,
                  const std::function<bool(const DcfObj&)>& isMeant) {
  StoredFiles stored;
  SyncPlan plan =
      PlanOf({std::move(catalogue), serial, pattern, std::move(times.of)}, types, manifest, isMeant, stored);
  if (pattern.HasTime() && times.ask) times.ask(NewPictures(plan));
  NumberItems(plan, Names(folder, plan.source->pattern, serial, plan.source->timeOf), stored);
  return plan;
}

SyncPlan PlanWithoutNames(std::vector<DcfObj> catalogue, const std::string& serial, const std::vector<int>& types,
                          const Pattern& pattern, Manifest& manifest) {
  StoredFiles stored;
  return PlanOf({std::move(catalogue), serial, pattern, CatalogueTaken}, types, manifest, nullptr, stored);
}

void AddOthers(SyncPlan& plan, OtherFiles others, bool fetch, Manifest& manifest,
               const std::function<bool(const OtherFile&)>& isMeant) {
  plan.others = std::move(others);
  const Manifest::Reading reading(manifest);
  for (const OtherFile& file : plan.others->files) {
    if (isMeant && !isMeant(file)) continue;
    const auto row = manifest.Find(file.Key(plan.source->serial));
    const bool isNew = !row || row->deleted;
    if (fetch) {
      plan.items.emplace_back(*plan.source, file).SetState(isNew ? SyncItem::State::kNew : SyncItem::State::kFetched);
    } else if (isNew) {
      ++plan.othersLeftOut;
      plan.othersLeftOutBytes += file.size;
    }
  }
}

}  // namespace apps
