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
      ReadDoubtful(writers);
      if (options_.deleteAfter) CompareAll(plan);
    } catch (const Stopped&) {
      writers.Abandon();
      throw;
    } catch (const std::exception& error) {
      ended = Explain(error, context_);
    }
    context_.reporter.AwaitCamera(false);
    try {
      writers.Finish();
    } catch (const Failure& failure) {
      if (!ended) ended = Outcome{failure.Code(), failure.what()};
    }
  }
  context_.reporter.AwaitCamera(true);
  if (!ended && options_.deleteAfter) ended = DeleteVerified();
  progress_.Clear();
  return ended;
}

template <typename Chosen, typename Work>
void Sync::ForEach(const SyncPlan& plan, std::string_view phase, Chosen chosen, Work work) {
  const auto count = static_cast<unsigned long long>(std::count_if(plan.items.begin(), plan.items.end(), chosen));
  if (count == 0) return;
  progress_.Phase(phase);
  readBytes_ = 0;
  unsigned long long done = 0;
  for (const SyncItem& item : plan.items) {
    if (!chosen(item)) continue;
    context_.stop.Check();
    ShowProgress(done++, count, item);
    if (context_.guard != nullptr && LeaveOut(item)) continue;
    context_.Doing("read " + ShownPath(item.CameraPath()));
    Try(item, [&] { work(item); });
  }
}

void Sync::ReadAll(const SyncPlan& plan, Writers& writers) {
  ForEach(
      plan, "reading", [](const SyncItem& i) { return i.IsNew(); }, [&](const SyncItem& i) { Fetch(i, writers); });
}

// Known files are read once more only before they are deleted on the camera.
void Sync::CompareAll(const SyncPlan& plan) {
  ForEach(
      plan, "comparing", [](const SyncItem& i) { return !i.IsNew() && !i.IsDeleted(); },
      [this](const SyncItem& i) { CompareKnown(i); });
}

void Sync::Try(const SyncItem& item, const std::function<void()>& work) {
  try {
    work();
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
  Submit(writers, {&item, std::move(bytes), sha1, options_.verify});
}

// A key that is not the SHA-1 of what came: either the read went wrong, or the key is something else than this project
// takes it for. A second read decides.
void Sync::ReadDoubtful(Writers& writers) {
  writers.Finish();  // all outcomes are in
  for (const auto& [item, sha1] : std::exchange(doubtful_, {})) {
    context_.stop.Check();
    context_.Doing("read " + ShownPath(item->CameraPath()));
    Try(*item, [&, item = item, &first = sha1] { ReadAgain(*item, first, writers); });
  }
}

void Sync::ReadAgain(const SyncItem& item, const std::string& first, Writers& writers) {
  std::vector<char> bytes = Read(item);
  const std::string sha1 = Sha1(bytes);
  const bool asKey = sha1 == item.ExpectedSha1();
  const std::string second = asKey && options_.verify ? Sha1(Read(item)) : asKey ? sha1 : first;
  if (sha1 != second) {
    return Fail(item, "What the camera sends of " + ShownPath(item.CameraPath()) +
                          " differs from read to read, so it was not stored; check the cable and the card.");
  }
  if (!asKey && !listed_.Agrees(item.CameraPath(), bytes.size()).value_or(true)) {
    throw CameraError("its key in the catalogue is not its SHA-1, and its folder gives it another size");
  }
  if (!asKey) ++totals_.unlikeKey;
  Submit(writers, {&item, std::move(bytes), sha1, !asKey || options_.verify, asKey});
}

// Waits for the disk where it is slower than the camera.
void Sync::Submit(Writers& writers, WriteJob job) {
  context_.reporter.AwaitCamera(false);
  writers.Submit(std::move(job));
  context_.reporter.AwaitCamera(true);
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
  const InItem inItem(context_.guard, TokenOf(item), ShownPath(item.CameraPath()));
  ReadLimit limit(ShownPath(item.CameraPath()), listed, Progress::Check, progress_);
  std::vector<char> bytes = camera_.ReadFile(item.Picture(), item.Type(), ReadLimit::Check, &limit, true);
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
  if (!outcome.row && outcome.unlikeKey.empty()) return Fail(*outcome.item, outcome.error);
  const std::scoped_lock lock(mutex_);
  if (!outcome.row) {
    doubtful_.emplace_back(outcome.item, outcome.unlikeKey);
    return;
  }
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

std::optional<Outcome> Sync::DeleteVerified() {
  Deletions deletions(camera_, folder_, manifest_);
  progress_.Phase("deleting");
  readBytes_ = 0;
  unsigned long long done = 0;
  try {
    for (const SyncItem* item : deletable_) {
      context_.stop.Check();
      ShowProgress(done++, deletable_.size(), *item);
      context_.Doing("delete " + ShownPath(item->CameraPath()));
      Try(*item, [&] { DeleteOne(*item, deletions); });
    }
    deletions.Finish();
  } catch (const CameraError& error) {
    return Explain(error, context_);
  } catch (const Failure& failure) {
    return Outcome{failure.Code(), failure.what()};
  }
  return std::nullopt;
}

void Sync::DeleteOne(const SyncItem& item, Deletions& deletions) {
  context_.reporter.HearCamera();
  const std::string why = deletions.Delete(item);
  if (!why.empty()) return Fail(item, why);
  ++totals_.deleted;
  if (context_.Json()) context_.Event("deleted", Json::Object().SetBytes("path", item.CameraPath()), "");
}

void Sync::ShowProgress(unsigned long long done, unsigned long long count, const SyncItem& item) {
  if (!progress_.IsDue()) return;
  progress_.Name(item.LocalText());
  progress_.Files(done, count);
  progress_.At(readBytes_);
}

}  // namespace apps
