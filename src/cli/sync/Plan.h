#ifndef KELVA_CLI_SYNC_PLAN_H_
#define KELVA_CLI_SYNC_PLAN_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DcfObj.h"
#include "sync/Manifest.h"
#include "sync/Pattern.h"

namespace kelva {

/// One file of a picture, and what is known of it.
struct SyncItem {
  DcfObj picture;
  int type;
  ManifestKey key;
  LocalPath local;
  int number = 1;                    ///< 2 for the second item of the catalogue with this local path, and so on
  std::string expectedSha1;          ///< empty when the catalogue does not say
  std::optional<ManifestRow> known;  ///< what the manifest has of it

  std::string CameraPath() const;
  /// Where it goes below the target, as long as nothing else is there.
  std::string LocalText() const;
  bool IsNew() const { return !known.has_value(); }
};

/// What is to be done, in the catalogue's order.
struct SyncPlan {
  std::vector<SyncItem> items;  ///< of the types asked for

  std::size_t NewFiles() const;
};

/// Reads "jpg,raw": types in any case, each once. Throws Failure(kUsage). Nothing means all four.
std::vector<int> ParseTypes(const std::optional<std::string>& list);

/// Compares a catalogue with a manifest.
SyncPlan MakePlan(const std::vector<DcfObj>& catalogue, const std::string& serial, const std::vector<int>& types,
                  const Pattern& pattern, Manifest& manifest);

}  // namespace kelva

#endif  // KELVA_CLI_SYNC_PLAN_H_
