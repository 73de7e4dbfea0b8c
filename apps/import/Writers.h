#ifndef KELVA_APPS_IMPORT_WRITERS_H_
#define KELVA_APPS_IMPORT_WRITERS_H_

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "apps/commandline/Failure.h"
#include "apps/files/StoreFile.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/CutFiles.h"
#include "apps/import/FileStream.h"
#include "apps/import/Folders.h"
#include "apps/import/Manifest.h"
#include "apps/import/Plan.h"
#include "platform/Processors.h"

namespace apps {

/// A file that was read, or is being read, and is to be stored.
struct WriteJob {
  const SyncItem* item;
  std::vector<char> bytes;
  std::string sha1;  ///< empty when it was not computed yet
  bool verified;
  bool trustsKey = true;                         ///< the catalogue's key, where there is one, has to be the SHA-1
  std::shared_ptr<FileStream> stream = nullptr;  ///< in place of all that, for a file that comes in pieces
  unsigned long long size = 0;                   ///< of such a file
  int number = 0;                                ///< in its name, in place of the plan's; 0 for that

  int Number() const { return number == 0 ? item->Number() : number; }
  /// The numbers before that under which it may be found: none where it would part from the picture's other files.
  int Before() const { return item->IsAlone() ? BesideFile::kMostBefore : 0; }
};

/// How one job ended.
struct WriteOutcome {
  const SyncItem* item;
  std::optional<ManifestRow> row;  ///< what is in the manifest now; nothing when it failed
  bool wasThere = false;           ///< the same bytes were there already
  std::string error;
  bool isDated = true;         ///< it was there, or has the time of its picture and not that of its fetching
  std::string unlikeKey = "";  ///< not stored, no error: the SHA-1, which is not the catalogue's key
};

/// Stores files while the next ones are being read, by the thread that makes this. Several threads, because most of their
/// time is spent waiting for the disk. They leave the reader its processor. Files become part of the manifest in groups, about one a second, after their folders were flushed;
/// outcomes are reported after that.
class Writers {
 public:
  using Report = std::function<void(const WriteOutcome&)>;

  /// `report` is called by the writers' threads, one at a time. Folder, manifest and cuts outlive this.
  /// `timeOf` dates files by their pictures; without it none is dated.
  Writers(const TargetFolder& folder, Manifest& manifest, CutFiles& cuts, Report report, TimeOf timeOf = {});
  /// Stores what was handed over, then ends.
  ~Writers();
  Writers(const Writers&) = delete;
  Writers& operator=(const Writers&) = delete;

  /// Before a file is read: why its folder would take no file, empty when it would. Throws Failure when no other folder would
  /// take one either (Folders::Try).
  std::string Try(const SyncItem& item) { return folders_.Try(item.Local()); }
  /// Hands a file over; waits while too many bytes are on their way. Throws the failure that made further writing
  /// pointless (a full or read-only disk, the manifest).
  void Submit(WriteJob job);
  /// Waits until all is stored and in the manifest. Throws as Submit.
  void Finish();
  /// Drops what is not being stored yet.
  void Abandon();

 private:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t kMostBytes = 4U << 20;
  static constexpr std::size_t kMostInGroup = 1024;
  static constexpr std::chrono::milliseconds kGroupTime{500};
  static constexpr std::size_t kThreads = 4;
  /// The most files, and the most bytes, that one thread stores at once.
  static constexpr std::size_t kMostAtOnce = 16;
  static constexpr std::size_t kMostBytesAtOnce = 1U << 20;
  /// How long a thread waits for more files to store at once.
  static constexpr std::chrono::milliseconds kGather{2};

  struct Done {
    ManifestRow row;
    const SyncItem* item;
    bool wasThere;
    bool isDated;
  };

  // A file between its two steps.
  struct Started {
    const WriteJob* job;
    LocalPath path;
    std::string sha1;
    std::shared_ptr<const TargetFolder> folder;
    BesideFile file;
    bool isDated = false;

    Started(const WriteJob& started, LocalPath local, std::string sum, std::shared_ptr<const TargetFolder> where);
  };

  void Run();
  std::vector<WriteJob> Next();
  std::vector<WriteJob> Take();
  bool IsFull() const;
  static std::size_t OnItsWay(const WriteJob& job);
  void StoreAll(const std::vector<WriteJob>& jobs);
  void StoreStream(const WriteJob& job, std::size_t& bytes);
  std::optional<Done> Arrive(const WriteJob& job, std::size_t& bytes);
  void HaveArrived(std::size_t& bytes);
  bool Attempt(const SyncItem& item, const std::function<void()>& work, std::optional<Failure>& ending);
  std::vector<Done> AddDone(Done done);
  std::unique_ptr<Started> Start(const WriteJob& job);
  bool Date(BesideFile& file, const SyncItem& item) const;
  Done Finish(Started& started);
  void Commit(std::vector<Done> group);
  void GiveUp(std::exception_ptr why);
  void ThrowIfBroken(const std::unique_lock<std::mutex>& lock) const;

  Manifest& manifest_;
  CutFiles& cuts_;
  Report report_;
  const TimeOf timeOf_;
  Folders folders_;

  std::mutex mutex_;                // the queue and what follows it
  std::condition_variable work_;    // for the writers
  std::condition_variable stored_;  // for Submit and Finish
  std::deque<WriteJob> queue_;
  std::size_t queued_ = 0;  // bytes in the queue
  std::size_t bytes_ = 0;   // handed over and not stored yet
  std::size_t active_ = 0;  // threads that store
  bool ending_ = false;     // nothing more will come
  std::exception_ptr broken_;
  std::vector<Done> done_;
  Clock::time_point lastGroup_ = Clock::now();

  std::mutex commitMutex_;   // the manifest and the report
  bool unrecorded_ = false;  // a group could not be recorded, so no other will be
  const platform::OwnProcessor reader_{kThreads + 1};
  std::vector<std::thread> threads_;
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_WRITERS_H_
