// How a sync ended: its result in words and in JSON.
#include "apps/kelva/verbs/SyncSummary.h"

#include <string>
#include <utility>

#include "apps/commandline/Printable.h"

namespace apps {
namespace {

ExitCode CodeOf(const SyncTotals& totals, const std::optional<Outcome>& ended) {
  if (ended && (ended->code != ExitCode::kFailed || totals.stored == 0)) return ended->code;
  return ended || totals.failed != 0 ? ExitCode::kPartial : ExitCode::kDone;
}

}  // namespace

ExitCode GiveSummary(Context& context, const Session& camera, const Sync& sync, std::size_t known,
                     const std::optional<Outcome>& ended) {
  SyncTotals totals = sync.Totals();
  if (context.guard != nullptr) {
    totals.stored = context.guard->Files();
    totals.bytes = context.guard->Bytes();
  }
  const ExitCode code = CodeOf(totals, ended);
  if (ended) context.reporter.Error(ended->sentence, code);
  Json members = CameraResult(camera);
  members.Set("stored", totals.stored).Set("bytes", totals.bytes).Set("already_here", totals.alreadyHere);
  members.Set("unlike_key", totals.unlikeKey);
  members.Set("known", known).Set("failed", totals.failed).Set("deleted", totals.deleted);
  if (ended) members.Set("error", ended->sentence);
  std::string text = std::to_string(totals.stored) + " stored (" + Bytes(totals.bytes) + "), " + std::to_string(known) +
                     " known before, " + std::to_string(totals.failed) + " failed";
  if (totals.deleted != 0) text += ", " + std::to_string(totals.deleted) + " deleted on the camera";
  if (totals.unlikeKey != 0) {
    context.reporter.Note(
        std::to_string(totals.unlikeKey) +
        " files have another SHA-1 than the catalogue's key says; two equal reads were taken instead.");
  }
  context.Result(std::move(members), text + "\n", code);
  if (ended) context.reporter.Note("Run the same command again to fetch the rest.");
  return code;
}

}  // namespace apps
