#ifndef KELVA_APPS_IMPORT_SYNC_TALLY_H_
#define KELVA_APPS_IMPORT_SYNC_TALLY_H_

#include "apps/commandline/Guard.h"

namespace apps {

/// The outcome of a sync, so far or at its end.
struct SyncTotals {
  unsigned long long known = 0;     ///< fetched by earlier runs
  unsigned long long expected = 0;  ///< files that were new when the run began
  unsigned long long stored = 0;
  unsigned long long alreadyHere = 0;  ///< of the stored, files that were here already with the same content
  unsigned long long bytes = 0;
  unsigned long long failed = 0;
  unsigned long long deleted = 0;
  unsigned long long toDelete = 0;   ///< how many were to be deleted, those included, once the deletion has begun
  unsigned long long resumed = 0;    ///< of the stored, files of which an earlier run had fetched a part
  unsigned long long unlikeKey = 0;  ///< of the stored, files whose key in the catalogue is not their SHA-1
  unsigned long long checked = 0;    ///< of the stored, files whose key in the catalogue is their SHA-1
  unsigned long long readTwice = 0;  ///< of the stored, files that were read twice, with the same content
  unsigned long long sizeOnly = 0;   ///< of the stored, files of which nothing but the size was compared
  unsigned long long numbered = 0;   ///< of the stored, files that got a number because their name was taken
  unsigned long long undated = 0;    ///< of the stored, files with the time of their fetching: nothing says another
  unsigned long long others = 0;  ///< files below DCIM and MISC that were left out, since they are not in the catalogue
  unsigned long long othersBytes = 0;  ///< their total size

  /// New files that are not stored, the failed ones included.
  unsigned long long Left() const { return expected > stored ? expected - stored : 0; }
};

/// Counts for a sync, over all processes of a guard. Any thread; nobody waits.
class SyncTally {
  Guard::Counters own_{};
  Guard::Counters& counters_;

 public:
  /// Without a guard it counts for itself.
  explicit SyncTally(Guard* guard) : counters_(guard == nullptr ? own_ : guard->Shared()) {}
  SyncTally(const SyncTally&) = delete;
  SyncTally& operator=(const SyncTally&) = delete;

  Guard::Counter& known = counters_[0];
  Guard::Counter& expected = counters_[1];
  Guard::Counter& stored = counters_[2];
  Guard::Counter& alreadyHere = counters_[3];
  Guard::Counter& bytes = counters_[4];
  Guard::Counter& failed = counters_[5];
  Guard::Counter& deleted = counters_[6];
  Guard::Counter& unlikeKey = counters_[7];
  Guard::Counter& checked = counters_[8];
  Guard::Counter& readTwice = counters_[9];
  Guard::Counter& sizeOnly = counters_[10];
  Guard::Counter& numbered = counters_[11];
  Guard::Counter& undated = counters_[12];
  Guard::Counter& others = counters_[13];
  Guard::Counter& othersBytes = counters_[14];
  Guard::Counter& resumed = counters_[15];
  Guard::Counter& toDelete = counters_[16];
  /// Not 0 once a person has agreed that files are deleted: a process that takes over does not ask again.
  Guard::Counter& agreed = counters_[31];

  SyncTotals Now() const {
    return {.known = known,
            .expected = expected,
            .stored = stored,
            .alreadyHere = alreadyHere,
            .bytes = bytes,
            .failed = failed,
            .deleted = deleted,
            .toDelete = toDelete,
            .resumed = resumed,
            .unlikeKey = unlikeKey,
            .checked = checked,
            .readTwice = readTwice,
            .sizeOnly = sizeOnly,
            .numbered = numbered,
            .undated = undated,
            .others = others,
            .othersBytes = othersBytes};
  }
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_SYNC_TALLY_H_
