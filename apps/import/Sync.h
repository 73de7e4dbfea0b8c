#ifndef KELVA_APPS_IMPORT_SYNC_H_
#define KELVA_APPS_IMPORT_SYNC_H_

#include <boost/shared_ptr.hpp>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/camera/Explain.h"
#include "apps/commandline/Context.h"
#include "apps/import/CutFiles.h"
#include "apps/import/FetchLarge.h"
#include "apps/import/Manifest.h"
#include "apps/import/NumbersHere.h"
#include "apps/import/PictureTimes.h"
#include "apps/import/Plan.h"
#include "apps/import/SyncTally.h"
#include "apps/import/SyncWork.h"
#include "apps/import/Writers.h"
#include "src/wifi/Camera.h"
#include "src/wifi/FileReader.h"

namespace apps {

/// Carries out a plan: reads on the calling thread, stores on others, and deletes last. A file that fails is reported
/// and the rest goes on; a camera that has gone, a full disk or a request to stop ends it, and what is stored stays.
class Sync {
 public:
  /// `times` dates the files; without it they have the time of their fetching. All outlive this.
  Sync(Context& context, boost::shared_ptr<Camera> camera, const TargetFolder& folder, Manifest& manifest,
       SyncOptions options, PictureTimes* times = nullptr);

  /// How many bytes will be written, as far as that is known: for the progress.
  void Expect(unsigned long long bytes) { expected_ = bytes; }
  /// Nothing when the plan was carried out to its end, failed files included; otherwise what ended it. Throws Stopped.
  std::optional<Outcome> Run(const SyncPlan& plan);
  /// What was done, over all processes of the context's guard.
  SyncTotals Totals() const { return work_.report.Tally().Now(); }
  SyncTally& Tally() { return work_.report.Tally(); }

 private:
  std::optional<Outcome> Fetch(const SyncPlan& plan);
  void FetchOne(const SyncItem& item, int number, Writers& writers);
  bool AwaitsKey(const SyncItem& item);
  void FetchWhole(const SyncItem& item, kelva::FileReader& reader, int number, Writers& writers);
  std::vector<char> ReadWhole(kelva::FileReader& reader);
  void ReadDoubtful(NumbersHere& numbers, Writers& writers);
  void ReadAgain(const SyncItem& item, const std::string& first, int number, Writers& writers);
  void DropGone(const SyncPlan& plan);
  void OnOutcome(const WriteOutcome& outcome);

  const TargetFolder& folder_;
  Manifest& manifest_;
  CutFiles cuts_;
  SyncWork work_;
  unsigned long long expected_ = 0;
  std::mutex mutex_;                                               // what follows: reached from the writers
  bool keysFit_ = true;                                            // as far as is known
  std::vector<std::pair<const SyncItem*, std::string>> doubtful_;  // with what they hash to, which is not their key
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_SYNC_H_
