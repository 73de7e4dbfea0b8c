#ifndef KELVA_APPS_IMPORT_PLAN_H_
#define KELVA_APPS_IMPORT_PLAN_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/import/Manifest.h"
#include "apps/import/Pattern.h"
#include "apps/import/TakenTime.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// Identifies a file of a picture in a manifest.
ManifestKey KeyOf(const DcfObj& picture, int type, const std::string& serial);

/// What all items of one plan share.
struct SyncSource {
  std::vector<DcfObj> catalogue;
  std::string serial;
  Pattern pattern;
  TimeOf timeOf;  ///< called from several threads, and only when the pattern has a time

  /// Where a file goes below the target, without a number.
  LocalPath Local(const DcfObj& picture, int type) const {
    return pattern.Apply(picture, type, serial, pattern.HasTime() ? timeOf(picture) : std::nullopt);
  }
};

/// How a plan whose names have dates learns them.
struct PlanTimes {
  /// Called once, before names are chosen, with the pictures that have new files.
  std::function<void(const std::vector<const DcfObj*>&)> ask = {};
  TimeOf of = CatalogueTaken;
};

/// One file of a picture, and what is known of it. Small, because there is one for every file of the camera; everything
/// else is worked out on request. Valid as long as its plan.
class SyncItem {
 public:
  enum class State : std::uint8_t { kNew, kFetched, kDeleted };

  SyncItem(const SyncSource& source, const DcfObj& picture, int type)
      : source_(&source), picture_(&picture), type_(static_cast<std::uint8_t>(type)) {}

  const DcfObj& Picture() const { return *picture_; }
  /// 1 to 4.
  int Type() const { return type_; }
  ManifestKey Key() const { return KeyOf(*picture_, type_, source_->serial); }
  std::string CameraPath() const;
  /// Where it goes below the target, without a number.
  LocalPath Local() const;
  /// The number in the names of the picture's files; 1 for names without a number.
  int Number() const { return number_; }
  /// Where it goes below the target, unless its name is taken meanwhile.
  std::string LocalText() const;
  /// Empty when the catalogue does not say.
  std::string ExpectedSha1() const;
  bool IsNew() const { return state_ == State::kNew; }
  /// It was fetched, verified, and deleted on the camera.
  bool IsDeleted() const { return state_ == State::kDeleted; }

  void SetNumber(int number) { number_ = number; }
  void SetState(State state) { state_ = state; }

 private:
  const SyncSource* source_;
  const DcfObj* picture_;
  int number_ = 1;
  std::uint8_t type_;
  State state_ = State::kNew;
};

/// What is to be done, in the catalogue's order.
struct SyncPlan {
  std::unique_ptr<const SyncSource> source;
  std::vector<SyncItem> items;  ///< of the types asked for

  std::size_t NewFiles() const;
};

/// Reads "jpg,raw": types in any case, each once. Throws Failure(kUsage). Nothing means all four.
std::vector<int> ParseTypes(const std::optional<std::string>& list);

/// Compares a catalogue with a manifest, and chooses names that are free in the target: one number for all files of a
/// picture (Names.h). `folder` is null while the target does not exist. Pictures that are
/// not meant are no items of the plan, but stay in its catalogue.
SyncPlan MakePlan(std::vector<DcfObj> catalogue, const std::string& serial, const std::vector<int>& types,
                  const Pattern& pattern, Manifest& manifest, const TargetFolder* folder, PlanTimes times = {},
                  const std::function<bool(const DcfObj&)>& isMeant = nullptr);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_PLAN_H_
