// Runs a plan: reads files from the camera and hands them to the writers.
#include "apps/import/Sync.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Picture.h"
#include "apps/camera/ReadLimit.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/FileCalls.h"
#include "apps/files/Sha1.h"

namespace apps {
namespace {

std::string TokenOf(const SyncItem& item) {
  return std::to_string(item.Type()) + " " + item.Key().picture;
}

}  // namespace

Sync::Sync(Context& context, Camera& camera, const TargetFolder& folder, Manifest& manifest, SyncOptions options)
    : context_(context),
      camera_(camera),
      listed_(camera),
      folder_(folder),
      manifest_(manifest),
      options_(options),
      progress_(context.reporter, context.stop, "", 0) {}

std::optional<Outcome> Sync::Run(const SyncPlan& plan) {
  std::optional<Outcome> ended;
  {
    Writers writers(folder_, manifest_, [this](const WriteOutcome& outcome) { OnOutcome(outcome); });
    try {
      ReadAll(plan, writers);
    } catch (const Stopped&) {
      writers.Abandon();
      throw;
    } catch (const std::exception& error) {
      ended = Explain(error, context_);
    }
    try {
      writers.Finish();
    } catch (const Failure& failure) {
      if (!ended) ended = Outcome{failure.Code(), failure.what()};
    }
  }
  if (!ended && options_.deleteAfter) ended = DeleteVerified();
  return ended;
}

void Sync::ReadAll(const SyncPlan& plan, Writers& writers) {
  const auto count =
      std::count_if(plan.items.begin(), plan.items.end(), [this](const SyncItem& i) { return IsRead(i); });
  unsigned long long done = 0;
  for (const SyncItem& item : plan.items) {
    if (!IsRead(item)) continue;
    context_.stop.Check();
    ShowProgress(done++, static_cast<unsigned long long>(count), item);
    ReadOne(item, writers);
  }
}

// Known files are read once more only before they are deleted on the camera.
bool Sync::IsRead(const SyncItem& item) const {
  return item.IsNew() || (options_.deleteAfter && !item.IsDeleted());
}

void Sync::ReadOne(const SyncItem& item, Writers& writers) {
  if (context_.guard != nullptr && LeaveOut(item)) return;
  context_.Doing("read " + ShownPath(item.CameraPath()));
  try {
    item.IsNew() ? Fetch(item, writers) : CompareKnown(item);
  } catch (const CameraError& error) {
    const Outcome outcome = Explain(error, context_);
    if (EndsAll(outcome.code)) throw;
    Fail(item, outcome.sentence);
  } catch (const std::bad_alloc& error) {
    Fail(item, Explain(error, context_).sentence);
  }
}

// True for a file that failed in an earlier process of this run, or ended one.
bool Sync::LeaveOut(const SyncItem& item) {
  const std::string token = TokenOf(item);
  const Guard::Fate fate = context_.guard->FateOf(token);
  if (fate == Guard::Fate::kUnknown && !context_.guard->WasReported(token)) return false;
  const std::string path = ShownPath(item.CameraPath());
  Fail(item, fate == Guard::Fate::kKilledTwice
                 ? "Two processes that read " + path +
                       " were killed, so the file was left out; close other programs and run the same command again."
                 : "The camera sent more of " + path +
                       " than it had announced, which ends the reading process; the file was left out.");
  return true;
}

void Sync::Fetch(const SyncItem& item, Writers& writers) {
  std::vector<char> bytes = Read(item);
  std::string sha1;
  if (options_.verify) {
    sha1 = Sha1(bytes);
    if (Sha1(Read(item)) != sha1) {
      Fail(item, "Two reads of " + ShownPath(item.CameraPath()) +
                     " differ, so it was not stored; check the cable and the card.");
      return;
    }
  }
  writers.Submit({&item, std::move(bytes), sha1, options_.verify});
}

// Read once more, so that what is deleted is still what was stored.
void Sync::CompareKnown(const SyncItem& item) {
  const auto known = manifest_.Find(item.Key());
  if (!known || Sha1(Read(item)) != known->sha1) {
    Fail(item, ShownPath(item.CameraPath()) + " is no longer what was fetched from there; it was not deleted.");
    return;
  }
  const std::scoped_lock lock(mutex_);
  deletable_.push_back(&item);
}

std::vector<char> Sync::Read(const SyncItem& item) {
  const std::optional<unsigned long long> listed = listed_.SizeOf(item.CameraPath());
  if (context_.guard != nullptr) context_.guard->Begin(TokenOf(item), ShownPath(item.CameraPath()));
  ReadLimit limit(ShownPath(item.CameraPath()), listed, Progress::Check, progress_);
  std::vector<char> bytes = camera_.ReadFile(item.Picture(), item.Type(), ReadLimit::Check, &limit, true);
  if (context_.guard != nullptr) context_.guard->End();
  CheckSize(item, bytes.size());
  readBytes_ += bytes.size();
  return bytes;
}

// A SHA-1 says more than a size, but an empty answer may also stand for a file that is missing.
void Sync::CheckSize(const SyncItem& item, std::size_t size) {
  if (size != 0 && !item.ExpectedSha1().empty()) return;
  const std::optional<bool> agrees = listed_.Agrees(item.CameraPath(), size);
  if (!agrees && size == 0) throw CameraError("the catalogue names it, but it is not in its folder");
  if (agrees.value_or(true)) return;
  throw CameraError("the folder gives it " + std::to_string(listed_.Listed()) + " bytes, and " + std::to_string(size) +
                    " came");
}

void Sync::OnOutcome(const WriteOutcome& outcome) {
  if (!outcome.row) return Fail(*outcome.item, outcome.error);
  const std::scoped_lock lock(mutex_);
  ++totals_.stored;
  totals_.alreadyHere += outcome.wasThere ? 1U : 0U;
  totals_.bytes += outcome.row->size;
  if (context_.guard != nullptr) context_.guard->Count(1, outcome.row->size);
  if (options_.deleteAfter && outcome.row->verified) deletable_.push_back(outcome.item);
  if (!context_.Json()) return;
  Json members = Json::Object().SetBytes("path", outcome.item->CameraPath()).SetBytes("file", outcome.row->path);
  members.Set("size", outcome.row->size).Set("sha1", outcome.row->sha1).Set("verified", outcome.row->verified);
  context_.Event("stored", std::move(members.Set("was_here", outcome.wasThere)), "");
}

void Sync::Fail(const SyncItem& item, const std::string& sentence) {
  const std::scoped_lock lock(mutex_);
  ++totals_.failed;
  if (context_.guard != nullptr && !context_.guard->TakeReport(TokenOf(item))) return;
  context_.reporter.Error(sentence, ExitCode::kPartial);
  if (!context_.Json()) return;
  context_.Event("failed", Json::Object().SetBytes("path", item.CameraPath()).Set("error", sentence), "");
}

bool Sync::IsOnDisk(const ManifestRow& row) const {
  const base::FileDescriptor file(OpenBeneath(folder_.Fd(), row.path, O_RDONLY | O_NONBLOCK));
  struct stat status {};
  if (!file || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  return static_cast<unsigned long long>(status.st_size) == row.size && Sha1OfFile(file.Get()) == row.sha1;
}

std::optional<Outcome> Sync::DeleteVerified() {
  for (const SyncItem* item : deletable_) {
    context_.stop.Check();
    context_.Doing("delete " + ShownPath(item->CameraPath()));
    try {
      DeleteOne(*item);
    } catch (const CameraError& error) {
      Outcome outcome = Explain(error, context_);
      if (EndsAll(outcome.code)) return outcome;
      Fail(*item, outcome.sentence);
    } catch (const Failure& failure) {
      return Outcome{failure.Code(), failure.what()};
    }
  }
  return std::nullopt;
}

void Sync::DeleteOne(const SyncItem& item) {
  const std::string path = item.CameraPath();
  const auto row = manifest_.Find(item.Key());
  if (!row || !IsOnDisk(*row)) {
    return Fail(item, Printable(row ? row->path : item.LocalText()) +
                          " is not where it was stored; the file on the camera was not deleted.");
  }
  if (!camera_.DeleteFile(path.c_str())) return Fail(item, "The camera refused to delete " + ShownPath(path) + ".");
  manifest_.MarkDeleted(item.Key());
  ++totals_.deleted;
  if (context_.Json()) context_.Event("deleted", Json::Object().SetBytes("path", path), "");
}

void Sync::ShowProgress(unsigned long long done, unsigned long long count, const SyncItem& item) {
  if (!progress_.IsDue()) return;
  progress_.Name(std::to_string(done + 1) + " of " + std::to_string(count) + "  " + item.LocalText());
  progress_.Files(done, count);
  progress_.At(readBytes_);
}

}  // namespace apps
