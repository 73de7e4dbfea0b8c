// How a sync ended: its result in words and in JSON.
#include "apps/import/SyncSummary.h"

#include <string>
#include <utility>

#include "apps/commandline/Printable.h"
#include "apps/commandline/Words.h"

namespace apps {
namespace {

ExitCode CodeOf(const SyncTotals& totals, const std::optional<Outcome>& ended) {
  if (ended && (ended->code != ExitCode::kFailed || totals.stored == 0)) return ended->code;
  return ended || totals.failed != 0 ? ExitCode::kPartial : ExitCode::kDone;
}

// "15 deleted on the camera", and of how many for a run that something ended.
std::string FilesDeleted(const SyncTotals& totals, bool early) {
  const std::string all = early && totals.toDelete != 0 ? " of " + std::to_string(totals.toDelete) : "";
  return std::to_string(totals.deleted) + all + " deleted on the camera";
}

std::string FilesStored(const SyncTotals& totals, bool early) {
  std::string text = std::to_string(totals.stored) + " stored (" + Bytes(totals.bytes) + "), " +
                     std::to_string(totals.known) + " known before, " + std::to_string(totals.failed) + " failed";
  if (early && totals.Left() != 0) text += ", " + std::to_string(totals.Left()) + " left";
  if (totals.deleted != 0 || (early && totals.toDelete != 0)) text += ", " + FilesDeleted(totals, early);
  return text + "\n";
}

// "Checked: 980 against a SHA-1, 5 by a second read."
std::string HowChecked(const SyncTotals& totals) {
  std::string how;
  const auto add = [&how](unsigned long long count, const char* way) {
    if (count != 0) how += (how.empty() ? "Checked: " : ", ") + std::to_string(count) + way;
  };
  add(totals.checked, " against a SHA-1");
  add(totals.readTwice, " by a second read");
  add(totals.sizeOnly, " by their size alone");
  return how.empty() ? "" : how + ".\n";
}

}  // namespace

std::string SyncInWords(const SyncTotals& totals, bool early, bool since) {
  std::string text = FilesStored(totals, early) + HowChecked(totals);
  if (totals.alreadyHere != 0) {
    text += std::to_string(totals.alreadyHere) + " of the stored " + (totals.alreadyHere == 1 ? "was" : "were") +
            " here already, with the same content.\n";
  }
  if (totals.numbered != 0) {
    text += std::to_string(totals.numbered) + " got a number because " + (totals.numbered == 1 ? "its" : "their") +
            " name was taken (--verbose names them).\n";
  }
  if (totals.resumed != 0) {
    text += std::to_string(totals.resumed) + " went on where an earlier run had ended.\n";
  }
  if (totals.undated != 0) {
    text += std::to_string(totals.undated) + " without a date " +
            (totals.undated == 1 ? "has the time of its" : "have the time of their") + " fetching.\n";
  }
  return text + OthersInWords(totals.others, totals.othersBytes, since);
}

Json SyncMembers(const SyncTotals& totals, Json members) {
  for (const SyncCount& count : kSyncCounts) {
    if (count.value == &SyncTotals::deleted) members.Set("left", totals.Left());
    members.Set(count.name, totals.*count.value);
  }
  return members;
}

std::string OthersInWords(unsigned long long files, unsigned long long bytes, bool since) {
  if (files == 0) return "";
  const std::string start = Counted(files, "other file") + " (" + Bytes(bytes) + ") below DCIM and MISC ";
  if (since) {
    return start + (files == 1 ? "has no date and was" : "have no date and were") +
           " not fetched; leave --since out to "
           "fetch " +
           (files == 1 ? "it" : "them") + ".\n";
  }
  return start + (files == 1 ? "was" : "were") + " not fetched; --everything fetches " + (files == 1 ? "it" : "them") +
         ".\n";
}

ExitCode GiveSummary(Context& context, const Session& camera, const SyncTotals& totals,
                     const std::optional<Outcome>& ended) {
  const ExitCode code = CodeOf(totals, ended);
  if (ended) context.reporter.Error(ended->sentence, code);
  Json members = SyncMembers(totals, CameraResult(camera));
  if (ended) members.Set("error", ended->sentence);
  if (totals.unlikeKey != 0) {
    context.reporter.Note(Counted(totals.unlikeKey, "file") + (totals.unlikeKey == 1 ? " has" : " have") +
                          " another SHA-1 than the catalogue's key says; two equal reads were taken instead.");
  }
  context.Result(std::move(members), SyncInWords(totals, ended.has_value(), context.call.Has("since")), code);
  // After a failure of this computer, such as a full disk, the same command would fail again.
  if (ended && ended->code != ExitCode::kFailed) context.reporter.Note("Run the same command again to fetch the rest.");
  return code;
}

SoFar::Done SyncSoFar(const SyncTotals& totals, Json camera) {
  std::string words = FilesDeleted(totals, true) + "; the same command goes on";
  if (totals.expected != 0) {
    words = std::to_string(totals.stored) + " of " + Counted(totals.expected, "file") + " stored, " + words;
  }
  if (totals.expected + totals.toDelete == 0) words = "nothing was stored yet; the same command starts again";
  return {std::move(words), SyncMembers(totals, std::move(camera))};
}

}  // namespace apps
