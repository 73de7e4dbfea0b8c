#ifndef KELVA_APPS_IMPORT_SYNC_H_
#define KELVA_APPS_IMPORT_SYNC_H_

#include <boost/shared_ptr.hpp>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/camera/Explain.h"
#include "apps/camera/ListedSizes.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Guard.h"
#include "apps/commandline/Progress.h"
#include "apps/import/CutFiles.h"
#include "apps/import/Deletions.h"
#include "apps/import/Manifest.h"
#include "apps/import/PictureTimes.h"
#include "apps/import/Plan.h"
#include "apps/import/SyncTally.h"
#include "apps/import/Writers.h"
#include "src/wifi/Camera.h"
#include "src/wifi/FileReader.h"

namespace apps {

struct SyncOptions {
  bool verify = false;       ///< read each new file twice
  bool deleteAfter = false;  ///< delete on the camera what is on disk, and is as its key says or is read once more
};

/// Carries out a plan: reads on the calling thread, stores on others, and deletes last. A file that fails is reported
/// and the rest goes on; a camera that has gone, a full disk or a request to stop ends it, and what is stored stays.
class Sync {
 public:
  /// `times` dates the files; without it they have the time of their fetching. All outlive this.
  Sync(Context& context, boost::shared_ptr<Camera> camera, const TargetFolder& folder, Manifest& manifest,
       SyncOptions options, PictureTimes* times = nullptr);

  /// Nothing when the plan was carried out to its end, failed files included; otherwise what ended it. Throws Stopped.
  std::optional<Outcome> Run(const SyncPlan& plan);
  /// What was done, over all processes of the context's guard.
  SyncTotals Totals() const { return totals_.Now(); }
  SyncTally& Tally() { return totals_; }

 private:
  void ReadAll(const SyncPlan& plan, Writers& writers);
  template <typename Chosen, typename Work>
  void ForEach(const SyncPlan& plan, std::string_view phase, Chosen chosen, Work work);
  void Try(const SyncItem& item, const std::function<void()>& work);
  bool LeaveOut(const SyncItem& item);
  void Fetch(const SyncItem& item, Writers& writers);
  void FetchWhole(const SyncItem& item, kelva::FileReader& reader, Writers& writers);
  bool FetchPieces(const SyncItem& item, kelva::FileReader& reader, Writers& writers, bool isLast);
  class Sending;
  bool SendAll(const SyncItem& item, kelva::FileReader& reader, FileStream& stream, Sending& sending, bool isLast);
  std::optional<FileStream::Here> TakeUp(const SyncItem& item, kelva::FileReader& reader, FileStream& stream);
  bool Send(const SyncItem& item, kelva::FileReader& reader, FileStream& stream, FileStream::What what,
            std::uint64_t from);
  void DropGone(const SyncPlan& plan);
  void LearnTime(const SyncItem& item, std::span<const char> start);
  void LearnTimeOfPart(const SyncItem& item, kelva::FileReader& reader);
  std::string HashOnCamera(const SyncItem& item);
  std::vector<const SyncItem*> Fetched(const SyncPlan& plan);
  kelva::FileReader Open(const SyncItem& item);
  std::vector<char> ReadWhole(kelva::FileReader& reader);
  void CheckSize(const SyncItem& item, unsigned long long announced);
  void CheckUnlikeKey(const SyncItem& item, unsigned long long size);
  void Count(bool unlikeKey, bool resumed);
  void Submit(Writers& writers, WriteJob job);
  void ReadDoubtful(Writers& writers);
  void ReadAgain(const SyncItem& item, const std::string& first, Writers& writers);
  std::optional<Outcome> DeleteVerified(const SyncPlan& plan);
  void DeleteOne(const SyncItem& item, Deletions& deletions);
  void OnOutcome(const WriteOutcome& outcome);
  void CountStored(const WriteOutcome& outcome);
  void Fail(const SyncItem& item, const std::string& sentence);
  void ShowProgress(unsigned long long done, unsigned long long count, const SyncItem& item);

  Context& context_;
  const boost::shared_ptr<Camera> camera_;
  ListedSizes listed_;
  const TargetFolder& folder_;
  Manifest& manifest_;
  CutFiles cuts_;
  SyncOptions options_;
  PictureTimes* const times_;
  Progress progress_;
  unsigned long long readBytes_ = 0;
  SyncTally totals_;
  std::set<const SyncItem*> onceRead_;  // stored in this run, of which nothing but the size was compared
  std::vector<std::pair<const SyncItem*, std::string>> doubtful_;  // with what they hash to, which is not their key
  std::mutex mutex_;                                               // output and both lists: reached from the writers
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_SYNC_H_
