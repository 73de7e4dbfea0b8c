#ifndef KELVA_APPS_IMPORT_SYNC_REPORT_H_
#define KELVA_APPS_IMPORT_SYNC_REPORT_H_

#include <mutex>
#include <set>
#include <string>

#include "apps/commandline/Context.h"
#include "apps/commandline/Guard.h"
#include "apps/import/Plan.h"
#include "apps/import/SyncTally.h"
#include "apps/import/Writers.h"

namespace apps {

/// Counts what becomes of the files of a plan, and says it: sentences for people, events in JSON. Any thread.
class SyncReport {
 public:
  /// `context` outlives this.
  explicit SyncReport(Context& context) : context_(context), tally_(context.guard) {}

  /// A file is about to be read. If that ends the process, the next one knows of it.
  InItem Begin(const SyncItem& item) const;
  /// True for a file that failed in an earlier process of this run, or ended one. It has failed then.
  bool LeaveOut(const SyncItem& item);
  /// People are told once what many files in a row have in common.
  void Fail(const SyncItem& item, const std::string& sentence, ExitCode reason = ExitCode::kFailed);
  /// How a file is to be stored that was read. `unlikeKey`: its key in the catalogue is not its SHA-1. `resumed`: an earlier
  /// run had fetched a part of it.
  void CountRead(bool unlikeKey, bool resumed);
  /// A file is in the manifest.
  void Stored(const WriteOutcome& outcome);
  /// A file was deleted on the camera, after what was read there was equal to what is here.
  void Deleted(const SyncItem& item);

  SyncTally& Tally() { return tally_; }
  const SyncTally& Tally() const { return tally_; }

 private:
  void CountStored(const WriteOutcome& outcome);

  Context& context_;
  SyncTally tally_;
  std::mutex mutex_;                    // output and what follows
  std::string lastFailure_;             // the last sentence of a failure
  std::set<const SyncItem*> onceRead_;  // stored in this run, of which nothing but the size was compared
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_SYNC_REPORT_H_
