#ifndef KELVA_APPS_IMPORT_PLAN_H_
#define KELVA_APPS_IMPORT_PLAN_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "apps/import/KnownPicture.h"
#include "apps/import/Manifest.h"
#include "apps/import/Names.h"
#include "apps/import/Others.h"
#include "apps/import/Pattern.h"
#include "apps/import/TakenTime.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// What all items of one plan share.
struct SyncSource {
  std::vector<DcfObj> catalogue;
  std::string serial;
  Pattern pattern;
  TimeOf timeOf;  ///< called from several threads, and only when the pattern has a time
  /// What the manifest has of pictures under something else than KeyOf.
  std::unordered_map<const DcfObj*, KnownPicture> listed = {};

  /// Where a file goes below the target, without a number.
  LocalPath Local(const DcfObj& picture, int type) const {
    return pattern.Apply(picture, type, serial, pattern.HasTime() ? timeOf(picture) : std::nullopt);
  }
  /// Identifies a file of a picture of the catalogue in the manifest.
  ManifestKey Key(const DcfObj& picture, int type) const;
};

/// How a plan whose names have dates learns them.
struct PlanTimes {
  /// Called once, before names are chosen, with the pictures that have new files.
  std::function<void(const std::vector<const DcfObj*>&)> ask = {};
  TimeOf of = CatalogueTaken;
};

/// One file of a picture, or another file of the camera, and what is known of it. Small, because there is one for every file
/// of the camera; everything else is worked out on request. Valid as long as its plan.
class SyncItem {
 public:
  enum class State : std::uint8_t { kNew, kFetched, kDeleted };

  SyncItem(const SyncSource& source, const DcfObj& picture, int type)
      : source_(&source), picture_(&picture), type_(static_cast<std::uint8_t>(type)) {}
  SyncItem(const SyncSource& source, const OtherFile& other) : source_(&source), other_(&other), type_(0) {}

  bool IsPicture() const { return type_ != 0; }
  /// Of a picture only.
  const DcfObj& Picture() const { return *picture_; }
  /// Of another file only.
  const OtherFile& Other() const { return *other_; }
  /// Whether both are files of one picture.
  bool IsWith(const SyncItem& item) const { return IsPicture() && item.IsPicture() && picture_ == item.picture_; }
  /// 1 to 4; 0 of another file.
  int Type() const { return type_; }
  ManifestKey Key() const;
  std::string CameraPath() const;
  /// Where it goes below the target, without a number.
  LocalPath Local() const;
  /// The number in the names of the picture's files; 1 for names without a number.
  int Number() const { return number_; }
  /// Where it goes below the target, unless its name is taken meanwhile.
  std::string LocalText() const;
  /// Whether its picture, if it has one, has no other file.
  bool IsAlone() const;
  /// When its picture was taken.
  std::optional<TakenTime> Taken(const TimeOf& timeOf) const { return IsPicture() ? timeOf(*picture_) : std::nullopt; }
  /// Empty when the catalogue does not say.
  std::string ExpectedSha1() const;
  bool IsNew() const { return state_ == State::kNew; }
  /// It was fetched, verified, and deleted on the camera.
  bool IsDeleted() const { return state_ == State::kDeleted; }

  void SetNumber(int number) { number_ = number; }
  void SetState(State state) { state_ = state; }

 private:
  const SyncSource* source_;
  const DcfObj* picture_ = nullptr;  // or
  const OtherFile* other_ = nullptr;
  int number_ = 1;
  std::uint8_t type_;
  State state_ = State::kNew;
};

/// What is to be done: pictures in the catalogue's order, then other files.
struct SyncPlan {
  std::unique_ptr<const SyncSource> source;
  std::vector<SyncItem> items;  ///< of the types asked for
  /// Of pictures with several files, where other files have their names; see NumbersHere.
  std::unordered_map<const DcfObj*, Names::Numbers> doubts = {};
  std::optional<OtherFiles> others = {};      ///< nothing: nobody looked for them
  unsigned long long othersLeftOut = 0;       ///< new ones that are no items
  unsigned long long othersLeftOutBytes = 0;  ///< their total size

  std::size_t NewFiles() const;
  /// Whether the camera has a file, asked for or not, as far as is known.
  bool MayHave(const ManifestKey& key) const;
};

/// Reads "jpg,raw": types in any case, each once. Throws Failure(kUsage). Nothing means all four.
std::vector<int> ParseTypes(const std::optional<std::string>& list);

/// Compares a catalogue with a manifest, and chooses names that are free in the target: one number for all files of a
/// picture (Names.h). `folder` is null while the target does not exist. Pictures that are
/// not meant are no items of the plan, but stay in its catalogue.
SyncPlan MakePlan(std::vector<DcfObj> catalogue, const std::string& serial, const std::vector<int>& types,
                  const Pattern& pattern, Manifest& manifest, const TargetFolder* folder, PlanTimes times = {},
                  const std::function<bool(const DcfObj&)>& isMeant = nullptr);

/// As MakePlan, and chooses no names: says only what is new.
SyncPlan PlanWithoutNames(std::vector<DcfObj> catalogue, const std::string& serial, const std::vector<int>& types,
                          const Pattern& pattern, Manifest& manifest);

/// Looks only at the others that are `meant`. With `fetch` they become items; a file that was deleted on the camera after
/// it was fetched, and is there once more, is new. Otherwise the new ones are counted.
void AddOthers(SyncPlan& plan, OtherFiles others, bool fetch, Manifest& manifest,
               const std::function<bool(const OtherFile&)>& isMeant = nullptr);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_PLAN_H_
