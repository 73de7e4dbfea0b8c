#include "sync/Writers.h"

#include <cerrno>
#include <utility>

#include "files/NewFile.h"
#include "files/Sha1.h"
#include "files/StoreFile.h"
#include "frame/Printable.h"

namespace kelva {
namespace {

// After these no other file will fare better.
bool EndsAll(int error) {
  return error == ENOSPC || error == EDQUOT || error == EROFS || error == EIO || error == ESTALE || error == ENODEV;
}

}  // namespace

Writers::Writers(const TargetFolder& folder, Manifest& manifest, Report report)
    : folder_(folder), manifest_(manifest), report_(std::move(report)) {
  for (std::size_t i = 0; i < kThreads; ++i) threads_.emplace_back([this] { Run(); });
}

Writers::~Writers() {
  {
    const std::scoped_lock lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  for (std::thread& thread : threads_) thread.join();
  try {
    Commit(std::exchange(done_, {}));
  } catch (const Failure&) {
    // The files are stored; the next run recognises them by their content.
  }
}

void Writers::ThrowIfBroken(const std::unique_lock<std::mutex>&) const {
  if (broken_) throw Failure(*broken_);
}

void Writers::Submit(WriteJob job) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this, &job] { return broken_ || bytes_ == 0 || bytes_ + job.bytes.size() <= kMostBytes; });
  ThrowIfBroken(lock);
  bytes_ += job.bytes.size();
  queue_.push_back(std::move(job));
  changed_.notify_all();
}

void Writers::Finish() {
  std::vector<Done> rest;
  {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return broken_ || (queue_.empty() && active_ == 0); });
    rest = std::exchange(done_, {});
  }
  Commit(std::move(rest));
  std::unique_lock lock(mutex_);
  ThrowIfBroken(lock);
}

void Writers::Abandon() {
  const std::scoped_lock lock(mutex_);
  queue_.clear();
}

std::optional<WriteJob> Writers::Next() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return ending_ || broken_ || !queue_.empty(); });
  if (broken_ || queue_.empty()) return std::nullopt;
  WriteJob job = std::move(queue_.front());
  queue_.pop_front();
  ++active_;
  return job;
}

void Writers::Run() {
  while (auto job = Next()) {
    const std::size_t size = job->bytes.size();
    try {
      Handle(std::move(*job));
    } catch (const Failure& failure) {
      GiveUp(failure);
    } catch (const std::exception& error) {
      GiveUp(Failure(ExitCode::kFailed, std::string("Storing files stopped: ") + Printable(error.what()) + "."));
    }
    const std::scoped_lock lock(mutex_);
    bytes_ -= size;
    --active_;
    changed_.notify_all();
  }
}

void Writers::GiveUp(const Failure& failure) {
  const std::scoped_lock lock(mutex_);
  if (!broken_) broken_ = failure;
  changed_.notify_all();
}

void Writers::Handle(WriteJob job) {
  std::optional<Done> done;
  try {
    done = Store(job);
  } catch (const Failure& failure) {
    if (EndsAll(failure.SystemError())) throw;
    const std::scoped_lock lock(commitMutex_);
    report_({job.item, std::nullopt, false, failure.what()});
    return;
  }
  std::vector<Done> group;
  {
    const std::scoped_lock lock(mutex_);
    done_.push_back(std::move(*done));
    if (done_.size() >= kGroup) group = std::exchange(done_, {});
  }
  Commit(std::move(group));
}

Writers::Done Writers::Store(const WriteJob& job) {
  const SyncItem& item = *job.item;
  const std::string sha1 = job.sha1.empty() ? Sha1(job.bytes) : job.sha1;
  if (!item.expectedSha1.empty() && item.expectedSha1 != sha1) {
    throw Failure(ExitCode::kFailed, "What the camera sent of " + Printable(item.CameraPath()) +
                                         " has another SHA-1 than the catalogue says; it was not kept, the next run "
                                         "reads it again.");
  }
  const auto folder = FolderFor(item.local);
  const Stored stored = StoreBeside(*folder, item.local.name, job.bytes, sha1, item.number);
  LocalPath path = item.local;
  path.name = stored.name;
  return {{item.key, path.Text(), sha1, job.bytes.size(), job.verified, false}, job.item, stored.wasThere};
}

std::shared_ptr<const TargetFolder> Writers::FolderFor(const LocalPath& path) {
  const std::scoped_lock lock(mutex_);
  constexpr std::size_t kMostOpen = 128;
  std::string name;
  std::shared_ptr<const TargetFolder> folder;
  for (const std::string& component : path.folders) {
    name += component + "/";
    std::shared_ptr<const TargetFolder>& known = folders_[name];
    if (!known) {
      known = std::make_shared<const TargetFolder>((folder ? *folder : folder_).Below(component));
      RemoveLeftovers(*known);
    }
    folder = known;
  }
  if (folders_.size() > kMostOpen) folders_.clear();
  if (folder) return folder;
  return std::shared_ptr<const TargetFolder>(&folder_, [](const TargetFolder*) {});
}

void Writers::Commit(std::vector<Done> group) {
  if (group.empty()) return;
  const std::scoped_lock lock(commitMutex_);
  // Names first, then the list that says they are there.
  std::map<std::string, std::shared_ptr<const TargetFolder>> flushed;
  std::vector<ManifestRow> rows;
  for (const Done& done : group) {
    auto& folder = flushed[done.row.path.substr(0, done.row.path.rfind('/') + 1)];
    if (!folder) (folder = FolderFor(done.item->local))->Sync();
    rows.push_back(done.row);
  }
  manifest_.Record(rows);
  for (Done& done : group) report_({done.item, std::move(done.row), done.wasThere, ""});
}

}  // namespace kelva
