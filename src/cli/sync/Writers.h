#ifndef KELVA_CLI_SYNC_WRITERS_H_
#define KELVA_CLI_SYNC_WRITERS_H_

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "files/TargetFolder.h"
#include "frame/Failure.h"
#include "sync/Manifest.h"
#include "sync/Plan.h"

namespace kelva {

/// A file that was read and is to be stored.
struct WriteJob {
  const SyncItem* item;
  std::vector<char> bytes;
  std::string sha1;  ///< empty when it was not computed yet
  bool verified;
};

/// How one job ended.
struct WriteOutcome {
  const SyncItem* item;
  std::optional<ManifestRow> row;  ///< what is in the manifest now; nothing when it failed
  bool wasThere = false;           ///< the same bytes were there already
  std::string error;
};

/// Stores files while the next ones are being read. Several threads, because most of their time is spent waiting for the
/// disk. Files become part of the manifest in groups, after their folders were flushed; outcomes are reported after that.
class Writers {
 public:
  using Report = std::function<void(const WriteOutcome&)>;

  /// `report` is called by the writers' threads, one at a time. Folder and manifest outlive this.
  Writers(const TargetFolder& folder, Manifest& manifest, Report report);
  /// Stores what was handed over, then ends.
  ~Writers();
  Writers(const Writers&) = delete;
  Writers& operator=(const Writers&) = delete;

  /// Hands a file over; waits while too many bytes are on their way. Throws the failure that made further writing
  /// pointless (a full or read-only disk, the manifest).
  void Submit(WriteJob job);
  /// Waits until all is stored and in the manifest. Throws as Submit.
  void Finish();
  /// Drops what is not being stored yet.
  void Abandon();

 private:
  static constexpr std::size_t kMostBytes = 32U << 20;
  static constexpr std::size_t kGroup = 64;
  static constexpr std::size_t kThreads = 4;

  struct Done {
    ManifestRow row;
    const SyncItem* item;
    bool wasThere;
  };

  void Run();
  std::optional<WriteJob> Next();
  void Handle(WriteJob job);
  Done Store(const WriteJob& job);
  std::shared_ptr<const TargetFolder> FolderFor(const LocalPath& path);
  void Commit(std::vector<Done> group);
  void GiveUp(const Failure& failure);
  void ThrowIfBroken(const std::unique_lock<std::mutex>& lock) const;

  const TargetFolder& folder_;
  Manifest& manifest_;
  Report report_;

  std::mutex mutex_;  // the queue and what follows it
  std::condition_variable changed_;
  std::deque<WriteJob> queue_;
  std::size_t bytes_ = 0;   // handed over and not stored yet
  std::size_t active_ = 0;  // jobs being stored
  bool ending_ = false;
  std::optional<Failure> broken_;
  std::vector<Done> done_;
  std::map<std::string, std::shared_ptr<const TargetFolder>> folders_;

  std::mutex commitMutex_;  // the manifest and the report
  std::vector<std::thread> threads_;
};

}  // namespace kelva

#endif  // KELVA_CLI_SYNC_WRITERS_H_
