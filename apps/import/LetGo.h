#ifndef KELVA_APPS_IMPORT_LET_GO_H_
#define KELVA_APPS_IMPORT_LET_GO_H_

#include <cstdint>

#include "apps/files/TargetFolder.h"
#include "apps/import/CutFiles.h"
#include "apps/import/Manifest.h"
#include "apps/import/Plan.h"

namespace apps {

/// What became of a file that a person wants to let go.
enum class LetGoOutcome : std::uint8_t {
  kFile,        ///< it was fetched and is here no more: from now on that is as it should be
  kPart,        ///< the part of it that was here is gone
  kHere,        ///< nothing: it is where it was stored
  kEdited,      ///< nothing: it is there and not as it was stored
  kBefore,      ///< nothing: it was let go already
  kNotFetched,  ///< nothing: neither it nor a part of it was here
};

/// Lets a file go. One that was fetched stays known, is not fetched again, and need not be here to be deleted on the
/// camera (Deletions). Never changes a file that is here, but for parts. Throws Failure.
LetGoOutcome LetGo(const SyncItem& item, const TargetFolder& folder, Manifest& manifest, CutFiles& cuts);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_LET_GO_H_
