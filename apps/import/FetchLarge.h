#ifndef KELVA_APPS_IMPORT_FETCH_LARGE_H_
#define KELVA_APPS_IMPORT_FETCH_LARGE_H_

#include <string>

#include "apps/import/CutFiles.h"
#include "apps/import/Plan.h"
#include "apps/import/SyncWork.h"
#include "apps/import/Writers.h"
#include "src/wifi/FileReader.h"

namespace apps {

/// A larger file comes in pieces.
inline constexpr unsigned long long kLargestWhole = 1U << 20;

/// What is said of a file that was not stored.
std::string TwoReadsDiffer(const SyncItem& item);
std::string DiffersEachTime(const SyncItem& item);

/// Reads a file in pieces and hands them to the writers as they come. Takes up what an earlier run left of it. A file that
/// came differently twice and never as its key says, or whose parts do not belong together, is read once more from its
/// start. `reader` has just selected the file; `number` is that in its name. Throws CameraError, Stopped, and as Writers::Submit; a later run then goes on
/// with what came.
void FetchLarge(SyncWork& work, const CutFiles& cuts, Writers& writers, const SyncItem& item, kelva::FileReader& reader,
                int number);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_FETCH_LARGE_H_
