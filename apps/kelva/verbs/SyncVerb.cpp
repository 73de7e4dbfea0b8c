// The verb sync.
#include <string>
#include <vector>

#include "apps/camera/ListedSizes.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Printable.h"
#include "apps/import/AskTimes.h"
#include "apps/import/Coming.h"
#include "apps/import/ImportRun.h"
#include "apps/import/SyncChoice.h"
#include "apps/kelva/verbs/Consent.h"
#include "apps/kelva/verbs/SyncAll.h"
#include "apps/kelva/verbs/SyncForget.h"
#include "apps/kelva/verbs/SyncPreview.h"
#include "apps/kelva/verbs/ToDelete.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

ExitCode RunDry(Context& context, const std::string& path, const SyncChoice& choice) {
  const auto folder = TargetFolder::OpenIfThere(path);
  Manifest manifest = folder ? Manifest(*folder, false) : Manifest();
  const Session camera(context, "read the picture catalogue");
  PictureTimes times;
  const TargetFolder* const known = folder ? &*folder : nullptr;
  const SyncPlan plan = PlanFor(context, camera, choice, manifest, known, times);
  NoteTrouble(context, times);
  return ShowPlan(context, camera, plan, {path, known, manifest});
}

// On a terminal, before anything is read.
void AskToDelete(Context& context, const Session& camera, const SyncPlan& plan, SyncTally& tally) {
  if (!CanAsk(context) || tally.agreed != 0) return;
  ListedSizes sizes(*camera);
  const std::vector<const SyncItem*> items = ToDelete(plan, sizes);
  if (items.empty()) return;
  Coming all;
  for (const SyncItem* item : items) all.Add(ListedSize(*item, sizes));
  Ask(context, {all.Text() + " will be deleted on camera " + Printable(camera.Facts().serial) +
                    ", each once it is on disk here, and is as its key says or was read twice, equal:",
                "Fetch and delete them?", "nothing was fetched or deleted", InLines(items)});
  tally.agreed = 1;
}

ExitCode RunSync(Context& context) {
  if (context.call.Has("forget")) return RunForget(context);
  if (context.call.Has("all")) return RunSyncAll(context);
  const SyncChoice choice = SyncChoiceOf(context);
  const std::string& path = context.call.words[0];
  if (context.call.Has("dry-run")) return RunDry(context, path, choice);
  return RunImport(context, path, choice, [&](const Session& camera, const SyncPlan& plan, SyncTally& tally) {
    AskToDelete(context, camera, plan, tally);
  });
}

constexpr Argument kArguments[] = {
    {"FOLDER", "Where the pictures go; it is created if it does not exist.", Argument::Count::kOne, Offer::kFolder}};
constexpr Option kOptions[] = {
    {"all", 'a', "",
     "Sync all attached cameras at once, each into a folder below FOLDER named after its serial number."},
    kTypesOption,
    kSinceOption,
    kFolderOption,
    kEverythingOption,
    kPatternOption,
    {"by", 0, "UNIT", "Folders by the picture's date: day, month or year. Short for a pattern.", Offer::kWords,
     "day month year"},
    {"forget", 0, "PICTURE",
     "Fetch nothing; let go the files of a picture that were fetched and are not here any more, and parts of cut "
     "transfers. "
     "May be repeated.",
     Offer::kPicture},
    {"dry-run", 'n', "",
     "Fetch nothing; show which files would be fetched, their names, sizes and the free space, and with "
     "--delete-after-verify which would be deleted on the camera."},
    {"verify", 0, "", "Read each new file a second time and compare."},
    {"delete-after-verify", 0, "",
     "Delete a file on the camera once it is on disk here, and is as its key says or was read twice, equal. Asks on a "
     "terminal."},
    kYesOption,
};
constexpr Example kExamples[] = {
    {"kelva sync ~/Pictures/camera", "Fetch what is new."},
    {"kelva sync --types jpg --pattern '{year}/{date}_{stem}.{ext}' -n ~/Pictures", "See where pictures would go."},
    {"kelva sync --by month ~/Pictures", "One folder for each month: 2026/03/IMG_0001.JPG."},
    {"kelva sync --since 7d --folder '101*' ~/Pictures", "Fetch the pictures of the last week in some folders."},
    {"kelva sync --everything ~/Pictures/camera", "Fetch videos and all other files too."},
    {"kelva sync --all ~/Pictures/cameras", "Fetch from all cameras, each into its folder."},
    {"kelva sync -n --delete-after-verify ~/Pictures/camera", "See what would be deleted on the camera."},
    {"kelva sync --delete-after-verify ~/Pictures/camera", "Make room on the camera, safely."},
    {"kelva sync --forget IMG_0001 ~/Pictures/camera", "A picture that was thrown away here may go on the camera too."},
};

constexpr Verb kVerbs[] = {
    {"sync", "Fetch all new pictures into a folder", kArguments, kOptions,
     R"(Reads the camera's catalogue and compares it with the list of what was fetched before
(.kelva-manifest.sqlite in FOLDER). Only new files are read. A file that you have renamed, moved or deleted here is
not fetched again. A different picture that reuses an old name counts as new. A picture stays known when some of its files
are deleted on the camera, or others join them. Where the catalogue has no keys, a picture whose entry there stays the same
counts as fetched, even if its bytes were replaced; --verify does not find that, because it reads new files alone. One whose
files there came or went counts as new: what is still here under its name is kept, what was moved or edited comes again. A damaged
list ends the run before anything is fetched (exit status 1) and is left as it is.

Each file is written under a temporary name, flushed, and checked against the SHA-1 in the catalogue if there is one. A
file that does not fit is read again, and stored if both reads are equal.
Only then does it get its name, so under their names lie whole files only. After Ctrl-C or an unplugged camera run the
same command again: it fetches the rest, and goes on in the middle of a large file, also with another --pattern. Until then its part lies beside the
others, named .kelva-*.part.

If the new files are larger than the free space, nothing is fetched (exit status 1). Sizes are those that the camera's
folders list. Files that are here already do not count.

An existing file is never overwritten. If it has the same content, it is kept and counts as fetched; if not, the new
picture gets a number, the same for all its files: a RAW never lies beside another picture's JPG. If the list was lost, a
picture is known again by the content of all its files; those without a key are read once more for that. Symbolic links in FOLDER are not followed: where one stands in place of a folder, one sentence says so for all its
pictures, and none of them is read. A file that fails is reported once and the rest goes on (exit status 6). If the process that reads is killed, as happens when memory runs out, another one tries the file once
more; if that one is killed too, the file counts as failed. While one run is at work in FOLDER a second one stops
(exit status 4); .kelva-manifest.lock, a file that stays, is for that.

All files of a picture have the time at which it was taken: the EXIF time of its JPG, which kelva-thumbnail reads, else
the time of the catalogue. Without either a file has the time of its fetching, and the summary counts it. EXIF times have
no zone; they are taken as this computer's local time. A file that was here before keeps its time.

What lies below DCIM and MISC and is not in the catalogue (videos, panoramas, files with other names) is counted. With
--everything it is fetched too, into the folders that it has on the camera: 100ABCDE/MVI_0001.MP4, MISC/AUTPRINT.MRK. Such
a file has no SHA-1 and no time on the camera: its path and size tell whether it was fetched before, and --verify reads it
twice.

--delete-after-verify names the first pictures when it asks (with --all the cameras), and all of them with --dry-run. It leaves a file on the camera
that was edited, moved or deleted here; --dry-run does not look for that. It deletes a picture again that
was deleted on the camera and put back there. --forget PICTURE lets go what was
moved or deleted on purpose: from then on --delete-after-verify deletes it on the camera, if it is still what was fetched. An
edited file has to be moved first. --forget also removes the part of a file whose transfer was cut. PICTURE is a name, a
path on the camera or a pattern; another file is named by its name or path.

--since goes by the time at which a picture was taken; it reads up to 64 KiB of each new picture for that. A picture without
a time is left out. So are the other files, which have none; with --everything they are counted. --folder with --everything
means the other files below that folder too.

The tokens of a pattern are {folder} {name} {stem} {ext} {number} {serial} {date} {year} {month} {day} {time}. The
last five are the time at which the picture was taken, in all its files, or "undated". A pattern with one of them, also
with --dry-run, first reads up to 64 KiB of each new picture. A pattern names each file: its last part has {name}, or {stem} and
{ext}. One that ends with / is a folder, in which files keep their names. --by day is {year}/{month}/{day}/, --by month is
{year}/{month}/, --by year is {year}/. A name from the camera cannot add a folder: bytes that are not
safe in a file name are written as %XX.

With --all each camera has a process, a list of fetched files and a folder of its own, FOLDER/SERIAL: names of two cameras never
meet, and one camera that fails does not hold up the others. What `kelva sync` fetched into FOLDER itself is not known
there. To collect several cameras in one folder, sync them one after another with --serial. The exit status is 0 if all
succeeded, that of the first camera if none did, otherwise 6.

Large files come in pieces. Memory is needed for the catalogue, 128 bytes for each picture, and for what is on its way to
the disk, 4 MB; it does not depend on the size of a file.)",
     R"(events, one object a line: stored (path, file, size, sha1, verified, was_here, numbered), failed (path, reason, error), deleted
  (path), would_store (path, file, size if the camera lists it), would_delete (path, size if the camera lists it)
stored: how many files were stored
bytes: their total size
already_here: how many were in FOLDER already, with the same content
checked: how many of the stored have the SHA-1 that is their key in the catalogue
read_twice: how many of the stored were read twice, with the same content
size_only: how many of the stored have no key and were read once, so that only their size was compared
unlike_key: how many have a SHA-1 that is not their key in the catalogue; they were read twice, with the same content
numbered: how many of the stored got a number because their name was taken
resumed: how many went on where an earlier run had ended
undated: how many have the time of their fetching, because neither EXIF nor the catalogue says another
known: how many were fetched by an earlier run
others, others_bytes: how many files below DCIM and MISC are not in the catalogue and were not fetched, and their size
failed: how many were not stored or not deleted
left: how many new files are not stored, the failed ones included
deleted: how many were deleted on the camera
to_delete: how many were to be deleted on the camera, the deleted ones included; 0 before the deletion begins;
  with --dry-run and --delete-after-verify, how many would be
error: what ended the run early
new, bytes, unlisted: with --dry-run, how many files would be fetched, their total size, and how many have no known size
folders: with --dry-run, array of folder (below FOLDER), files, bytes
free: with --dry-run, bytes that are free for FOLDER
forgotten: with --forget, array of picture (as given) and files (array of path, and was: fetched, part or forgotten);
  or of path (as given) and error
cameras: with --all, array of the results of each camera; the counts are then sums, and each event has serial)",
     kExamples, RunSync, true}};

}  // namespace

std::span<const Verb> SyncVerbs() {
  return kVerbs;
}

}  // namespace apps
