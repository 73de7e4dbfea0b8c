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

/// What is done at the end of a file.
struct AtEnd {
  /// Wait for its SHA-1, to read it once more if that is not the key. Otherwise the next file is read meanwhile, and the
  /// writers' outcome tells of a key that does not fit.
  bool wait = true;
  /// The SHA-1 of an earlier read that was not the key: another one with the same proves the file.
  std::string before = "";
};

/// What is said of a file that was not stored.
std::string TwoReadsDiffer(const SyncItem& item);
std::string DiffersEachTime(const SyncItem& item);

/// Reads a file in pieces and hands them to the writers as they come. Takes up what an earlier run left of it. A file that
/// came differently twice and never as its key says, or whose parts do not belong together, is read once more from its
/// start. `reader` has just selected the file; `number` is that in its name. Throws CameraError, Stopped, and as Writers::Submit; a later run then goes on
/// with what came.
void FetchLarge(SyncWork& work, const CutFiles& cuts, Writers& writers, const SyncItem& item, kelva::FileReader& reader,
                int number, const AtEnd& atEnd);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_FETCH_LARGE_H_
