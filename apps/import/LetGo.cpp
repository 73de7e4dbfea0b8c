// Lets files go that a person threw away, and parts that nobody will complete.
#include "apps/import/LetGo.h"

#include "apps/import/Deletions.h"

namespace apps {

LetGoOutcome LetGo(const SyncItem& item, const TargetFolder& folder, Manifest& manifest, CutFiles& cuts) {
  const ManifestKey wanted = item.Key();
  if (cuts.Has(wanted)) {
    cuts.DropIf([&wanted](const ManifestKey& key) { return key == wanted; });
    return LetGoOutcome::kPart;
  }
  const auto row = manifest.Find(wanted);
  if (!row) return LetGoOutcome::kNotFetched;
  if (row->MayGo()) return LetGoOutcome::kBefore;
  const StoredState state = StateOf(*row, folder);
  if (state == StoredState::kSame) return LetGoOutcome::kHere;
  if (state != StoredState::kGone) return LetGoOutcome::kEdited;
  manifest.LetGo({wanted});
  return LetGoOutcome::kFile;
}

}  // namespace apps
