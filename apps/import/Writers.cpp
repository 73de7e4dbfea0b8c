// Threads that check, store and record files while the camera is read.
#include "apps/import/Writers.h"

#include <set>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/commandline/Printable.h"
#include "apps/files/DiskErrors.h"
#include "apps/files/Sha1.h"
#include "apps/import/Receive.h"

namespace apps {
namespace {

// What came hashes to something else than the catalogue's key.
struct UnlikeKey {
  std::string sha1;
};

}  // namespace

Writers::Writers(const TargetFolder& folder, Manifest& manifest, CutFiles& cuts, Report report, TimeOf timeOf)
    : manifest_(manifest),
      cuts_(cuts),
      report_(std::move(report)),
      timeOf_(std::move(timeOf)),
      folders_(folder, [&cuts](const std::string& path) { return cuts.Keeps(path); }) {
  for (std::size_t i = 0; i < kThreads; ++i) threads_.emplace_back([this] { Run(); });
}

Writers::~Writers() {
  {
    const std::scoped_lock lock(mutex_);
    ending_ = true;
  }
  work_.notify_all();
  for (std::thread& thread : threads_) thread.join();
  try {
    Commit(std::exchange(done_, {}));
  } catch (...) {
    // Whatever it is, also of the report. The files are stored; the next run recognises them by their content.
  }
}

void Writers::ThrowIfBroken(const std::unique_lock<std::mutex>&) const {
  if (broken_) std::rethrow_exception(broken_);
}

void Writers::Submit(WriteJob job) {
  std::unique_lock lock(mutex_);
  const std::size_t bytes = OnItsWay(job);
  stored_.wait(lock, [this, bytes] { return broken_ || bytes_ == 0 || bytes_ + bytes <= kMostBytes; });
  ThrowIfBroken(lock);
  bytes_ += bytes;
  queued_ += bytes;
  queue_.push_back(std::move(job));
  if (queue_.size() == 1 || IsFull()) work_.notify_one();
}

void Writers::Finish() {
  std::vector<Done> rest;
  {
    std::unique_lock lock(mutex_);
    stored_.wait(lock, [this] { return broken_ || (queue_.empty() && active_ == 0); });
    rest = std::exchange(done_, {});
  }
  Commit(std::move(rest));
  std::unique_lock lock(mutex_);
  ThrowIfBroken(lock);
}

void Writers::Abandon() {
  const std::scoped_lock lock(mutex_);
  for (const WriteJob& job : queue_) {
    if (job.stream) job.stream->GiveUp();
  }
  queue_.clear();
  queued_ = 0;
}

std::size_t Writers::OnItsWay(const WriteJob& job) {
  return job.stream ? FileStream::kMostBytes : job.bytes.size();
}

bool Writers::IsFull() const {
  return queue_.size() >= kMostAtOnce || queued_ >= kMostBytesAtOnce;
}

std::vector<WriteJob> Writers::Take() {
  std::vector<WriteJob> jobs;
  std::size_t bytes = 0;
  while (!queue_.empty() && jobs.size() < kMostAtOnce && bytes < kMostBytesAtOnce) {
    // A file that comes in pieces has a thread of its own.
    if (queue_.front().stream && !jobs.empty()) break;
    bytes += OnItsWay(queue_.front());
    jobs.push_back(std::move(queue_.front()));
    queue_.pop_front();
  }
  queued_ -= bytes;
  ++active_;
  return jobs;
}

// A batch for one thread; empty at the end. Waits a moment for more jobs, because one flush of the folder and one
// transaction then serve the whole batch, and those cost more than the bytes of small files.
std::vector<WriteJob> Writers::Next() {
  std::unique_lock lock(mutex_);
  while (true) {
    work_.wait(lock, [this] { return ending_ || broken_ || !queue_.empty(); });
    work_.wait_for(lock, kGather, [this] { return ending_ || broken_ || queue_.empty() || IsFull(); });
    if (broken_) return {};
    if (!queue_.empty()) return Take();
    if (ending_) return {};
  }
}

void Writers::Run() {
  reader_.KeepOff();
  for (std::vector<WriteJob> jobs = Next(); !jobs.empty(); jobs = Next()) {
    std::size_t bytes = 0;
    for (const WriteJob& job : jobs) bytes += OnItsWay(job);
    try {
      jobs.front().stream ? StoreStream(jobs.front(), bytes) : StoreAll(jobs);
    } catch (const Failure&) {
      GiveUp(std::current_exception());
    } catch (const std::exception& error) {
      const std::string why = "Storing files stopped: " + Printable(error.what()) + ".";
      GiveUp(std::make_exception_ptr(Failure(ExitCode::kFailed, why)));
    } catch (...) {
      GiveUp(std::current_exception());  // the report's, as when nobody reads standard output any more
    }
    jobs.clear();  // gives the memory back before the reader is told that there is room
    const std::scoped_lock lock(mutex_);
    bytes_ -= bytes;
    --active_;
    stored_.notify_one();
  }
}

void Writers::GiveUp(std::exception_ptr why) {
  const std::scoped_lock lock(mutex_);
  if (!broken_) broken_ = std::move(why);
  for (const WriteJob& job : queue_) {
    if (job.stream) job.stream->GiveUp();
  }
  work_.notify_all();
  stored_.notify_one();
}

// True if it worked. A failure of one file is reported, and the rest goes on; a failure that no other file could escape
// (a full disk) is kept in `ending`.
bool Writers::Attempt(const SyncItem& item, const std::function<void()>& work, std::optional<Failure>& ending) {
  try {
    work();
    return true;
  } catch (const UnlikeKey& unlike) {
    const std::scoped_lock lock(commitMutex_);
    report_({&item, std::nullopt, false, "", false, unlike.sha1});
    return false;
  } catch (const Failure& failure) {
    if (EndsAllWriting(failure.SystemError())) {
      if (!ending) ending = failure;
      return false;
    }
    const std::scoped_lock lock(commitMutex_);
    report_({&item, std::nullopt, false, failure.what()});
    return false;
  }
}

// Starts to flush all files before it waits for the first, and names them after the last: a new name changes the
// folder, and a file system may write a changed folder with each file that is flushed. When the disk is full, finishes
// the files that were written.
void Writers::StoreAll(const std::vector<WriteJob>& jobs) {
  std::optional<Failure> ending;
  std::vector<std::unique_ptr<Started>> started;
  for (const WriteJob& job : jobs) {
    if (!ending) {
      Attempt(
          *job.item, [&] { started.push_back(Start(job)); }, ending);
    }
  }
  for (std::unique_ptr<Started>& file : started) {
    if (!Attempt(
            *file->job->item,
            [&] {
              file->isDated = Date(file->file, *file->job->item);
              file->file.Flush();
            },
            ending)) {
      file.reset();
    }
  }
  for (const std::unique_ptr<Started>& file : started) {
    std::optional<Done> done;
    if (file && Attempt(
                    *file->job->item, [&] { done = Finish(*file); }, ending)) {
      Commit(AddDone(std::move(*done)));
    }
  }
  if (ending) throw Failure(*ending);
}

// A file that comes in pieces. It is flushed and named on its own: the others are large too. `bytes` are on its way; none once all
// have arrived, so that the next files are read while the disk takes this one.
void Writers::StoreStream(const WriteJob& job, std::size_t& bytes) {
  // Whatever ends it: its reader may wait.
  const std::unique_ptr<FileStream, void (*)(FileStream*)> atEnd(job.stream.get(), [](FileStream* s) { s->GiveUp(); });
  std::optional<Failure> ending;
  std::optional<Done> done;
  Attempt(
      *job.item, [&] { done = Arrive(job, bytes); }, ending);
  if (done) Commit(AddDone(std::move(*done)));
  if (ending) throw Failure(*ending);
}

void Writers::HaveArrived(std::size_t& bytes) {
  const std::scoped_lock lock(mutex_);
  bytes_ -= std::exchange(bytes, 0);
  stored_.notify_one();
}

std::optional<Writers::Done> Writers::Arrive(const WriteJob& job, std::size_t& bytes) {
  const SyncItem& item = *job.item;
  LocalPath path = item.Local();
  const auto folder = folders_.For(path);
  Arrival arrival{item.Key(), job.size, path, *folder, cuts_.TakeUp(item.Key(), job.size, path, *folder)};
  std::optional<Received> received = Receive(*job.stream, std::move(arrival), manifest_);
  if (!received) return std::nullopt;
  const std::string key = item.ExpectedSha1();
  if (received->byKey && !key.empty() && key != received->sha1) throw UnlikeKey{received->sha1};
  job.stream->Free();
  HaveArrived(bytes);
  BesideFile file(*folder, path.name, std::move(received->file), job.size, received->sha1, job.Number(), job.Before());
  const bool isDated = Date(file, item);
  file.Flush();
  Stored stored = file.TakeName();
  path.name = std::move(stored.name);
  return Done{{item.Key(), path.Text(), received->sha1, job.size, received->verified, false},
              &item,
              stored.wasThere,
              isDated || stored.wasThere};
}

// Adds a file to the group. Returns the group if it is due, otherwise nothing.
std::vector<Writers::Done> Writers::AddDone(Done done) {
  const Clock::time_point now = Clock::now();
  const std::scoped_lock lock(mutex_);
  done_.push_back(std::move(done));
  if (done_.size() < kMostInGroup && now - lastGroup_ < kGroupTime) return {};
  lastGroup_ = now;
  return std::exchange(done_, {});
}

Writers::Started::Started(const WriteJob& started, LocalPath local, std::string sum,
                          std::shared_ptr<const TargetFolder> where)
    : job(&started),
      path(std::move(local)),
      sha1(std::move(sum)),
      folder(std::move(where)),
      file(*folder, path.name, started.bytes, sha1, started.Number(), started.Before()) {}

std::unique_ptr<Writers::Started> Writers::Start(const WriteJob& job) {
  const SyncItem& item = *job.item;
  std::string sha1 = job.sha1.empty() ? Sha1(job.bytes) : job.sha1;
  if (job.trustsKey && !item.ExpectedSha1().empty() && item.ExpectedSha1() != sha1) throw UnlikeKey{sha1};
  LocalPath path = item.Local();
  auto folder = folders_.For(path);
  return std::make_unique<Started>(job, std::move(path), std::move(sha1), std::move(folder));
}

// Waits for the time of the picture, while the disk takes the bytes.
bool Writers::Date(BesideFile& file, const SyncItem& item) const {
  const std::optional<TakenTime> time = timeOf_ ? item.Taken(timeOf_) : std::nullopt;
  if (time) file.SetTime(MomentHere(*time));
  return time.has_value();
}

Writers::Done Writers::Finish(Started& started) {
  const SyncItem& item = *started.job->item;
  Stored stored = started.file.TakeName();
  started.path.name = std::move(stored.name);
  const WriteJob& job = *started.job;
  return {{item.Key(), started.path.Text(), started.sha1, job.bytes.size(), job.verified, false},
          job.item,
          stored.wasThere,
          started.isDated || stored.wasThere};
}

void Writers::Commit(std::vector<Done> group) {
  const std::scoped_lock lock(commitMutex_);
  // What a flush that failed should have put on disk may be lost, even if the next flush succeeds.
  if (group.empty() || std::exchange(unrecorded_, true)) return;
  // Names first, then the list that says they are there.
  std::set<Folders::Way> ways;
  std::vector<ManifestRow> rows;
  for (const Done& done : group) {
    ways.insert(done.item->Local().folders);
    rows.push_back(done.row);
  }
  folders_.Flush(ways);
  manifest_.Record(rows);
  unrecorded_ = false;
  for (Done& done : group) report_({done.item, std::move(done.row), done.wasThere, "", done.isDated});
}

}  // namespace apps
