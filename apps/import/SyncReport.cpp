// Counts and says what becomes of the files of a sync.
#include "apps/import/SyncReport.h"

#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Json.h"
#include "apps/commandline/Printable.h"

namespace apps {
namespace {

std::string TokenOf(const SyncItem& item) {
  return std::to_string(item.Type()) + " " + item.Key().picture;
}

// It was stored now, and beside something else that had its name.
bool IsNumbered(const WriteOutcome& outcome) {
  return !outcome.wasThere && outcome.row->path != outcome.item->Local().Text();
}

}  // namespace

InItem SyncReport::Begin(const SyncItem& item) const {
  return {context_.guard, TokenOf(item), ShownPath(item.CameraPath())};
}

bool SyncReport::LeaveOut(const SyncItem& item) {
  if (context_.guard == nullptr) return false;
  const std::string token = TokenOf(item);
  const Guard::Fate fate = context_.guard->FateOf(token);
  if (fate == Guard::Fate::kUnknown && !context_.guard->WasReported(token)) return false;
  const std::string path = ShownPath(item.CameraPath());
  Fail(item,
       fate == Guard::Fate::kKilledTwice
           ? "Two processes that read " + path +
                 " were killed, so the file was left out; close other programs and try again."
           : "The process that read " + path + " aborted, so the file was left out; what was printed before says why.");
  return true;
}

void SyncReport::Fail(const SyncItem& item, const std::string& sentence, ExitCode reason) {
  const std::scoped_lock lock(mutex_);
  if (context_.guard != nullptr && !context_.guard->TakeReport(TokenOf(item))) return;
  ++tally_.failed;
  const bool isNews = std::exchange(lastFailure_, sentence) != sentence;
  if (isNews || context_.Json()) context_.reporter.Error(sentence, ExitCode::kPartial);
  if (!context_.Json()) return;
  Json members = Json::Object().SetBytes("path", item.CameraPath()).Set("reason", WordOf(reason));
  context_.Event("failed", std::move(members.Set("error", sentence)), "");
}

void SyncReport::CountRead(bool unlikeKey, bool resumed) {
  tally_.unlikeKey += unlikeKey ? 1U : 0U;
  tally_.resumed += resumed ? 1U : 0U;
}

void SyncReport::Stored(const WriteOutcome& outcome) {
  const std::scoped_lock lock(mutex_);
  CountStored(outcome);
  if (!context_.Json()) return;
  Json members = Json::Object().SetBytes("path", outcome.item->CameraPath()).SetBytes("file", outcome.row->path);
  members.Set("size", outcome.row->size).Set("sha1", outcome.row->sha1).Set("verified", outcome.row->verified);
  members.Set("was_here", outcome.wasThere).Set("numbered", IsNumbered(outcome));
  context_.Event("stored", std::move(members), "");
}

void SyncReport::CountStored(const WriteOutcome& outcome) {
  const ManifestRow& row = *outcome.row;
  const bool asKey = row.sha1 == outcome.item->ExpectedSha1();
  tally_.bytes += row.size;
  ++tally_.stored;
  if (outcome.wasThere) ++tally_.alreadyHere;
  if (!outcome.isDated) ++tally_.undated;
  if (asKey) ++tally_.checked;
  if (row.verified) ++tally_.readTwice;
  if (!asKey && !row.verified) {
    ++tally_.sizeOnly;
    onceRead_.insert(outcome.item);
  }
  if (!IsNumbered(outcome)) return;
  ++tally_.numbered;
  if (context_.reporter.Style().verbose && !context_.Json()) {
    context_.reporter.Note(ShownPath(outcome.item->CameraPath()) + " is " + Printable(row.path) +
                           ", because its name was taken.");
  }
}

void SyncReport::Deleted(const SyncItem& item) {
  const std::scoped_lock lock(mutex_);
  ++tally_.deleted;
  if (onceRead_.erase(&item) != 0) {  // it was read once more, with the same content
    --tally_.sizeOnly;
    ++tally_.readTwice;
  }
  if (context_.Json()) context_.Event("deleted", Json::Object().SetBytes("path", item.CameraPath()), "");
}

}  // namespace apps
