// The verbs pictures and pictures rm.
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "apps/camera/Catalogue.h"
#include "apps/camera/Picture.h"
#include "apps/camera/PictureChoice.h"
#include "apps/camera/PictureList.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Words.h"
#include "apps/kelva/verbs/Consent.h"
#include "apps/kelva/verbs/Each.h"
#include "apps/kelva/verbs/PictureTable.h"
#include "apps/kelva/verbs/SheetRun.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

ExitCode RunPictures(Context& context) {
  if (const auto sheet = context.call.Value("sheet")) {
    if (!PictureChoice(context).IsAll()) {
      throw Failure(ExitCode::kUsage, "--since and --folder go with the list; a sheet shows every picture.");
    }
    return RunSheet(context, *sheet);
  }
  if (context.call.Has("force")) throw Failure(ExitCode::kUsage, "--force goes with --sheet; a list replaces nothing.");
  const PictureChoice choice(context);
  const Session camera(context, "read the picture catalogue");
  std::vector<DcfObj> catalogue = ReadPictures(*camera);
  const bool empty = catalogue.empty();
  choice.Apply(catalogue, context);
  const bool none = catalogue.empty();
  context.Doing("list the folders of the pictures");
  const PictureTable table(std::move(catalogue), *camera, context.stop);
  Json members = CameraResult(camera).Set("pictures", table.List()).Merge(table.Totals());
  if (!none && !context.Json()) table.Print(context.out);
  context.Result(std::move(members), "");
  if (empty) {
    context.reporter.Note("There are no pictures in the camera's catalogue.");
  } else if (none) {
    context.reporter.Note("No picture of the camera's catalogue is what --since and --folder ask for.");
  }
  return ExitCode::kDone;
}

// What to do with one word of the command line: the pictures that it means, or why it means none.
struct Meaning {
  std::string word;
  std::vector<DcfObj> pictures;
  std::optional<Failure> failure;
};

Meaning MeaningOf(const std::vector<DcfObj>& catalogue, const std::string& word) {
  try {
    return {word, FindPictures(catalogue, word), std::nullopt};
  } catch (const Failure& failure) {
    return {word, {}, failure};
  }
}

Json Named(const DcfObj& picture) {
  return Json::Object().SetBytes("folder", PictureFolder(picture)).SetBytes("name", PictureStem(picture));
}

std::string WithTypes(const DcfObj& picture) {
  return PictureName(picture) + "  " + TypeList(picture);
}

Json ShowOne(Context& context, const DcfObj& picture) {
  if (!context.Json()) context.out.Add(WithTypes(picture) + "\n");
  return Named(picture);
}

Json DeleteOne(Context& context, Camera& camera, const DcfObj& picture) {
  context.stop.Check();
  context.Doing("delete the picture " + PictureName(picture));
  if (camera.DeleteDcfObject(picture)) return Named(picture);
  throw Failure(ExitCode::kRefused, "The camera refused to delete the picture " + PictureName(picture) + ".");
}

std::string BytesOf(const DcfObj& picture) {
  return {reinterpret_cast<const char*>(&picture), sizeof picture};
}

// What another program changed while the question stood is not what was agreed to.
void KeepWhatChanged(Camera& camera, std::vector<Meaning>& meanings) {
  std::set<std::string> now;
  for (const DcfObj& picture : ReadPictures(camera)) now.insert(BytesOf(picture));
  for (Meaning& meaning : meanings) {
    const auto changed = [&](const DcfObj& picture) { return !now.contains(BytesOf(picture)); };
    if (std::erase_if(meaning.pictures, changed) == 0) continue;
    meaning.failure =
        Failure(ExitCode::kFailed, "Some of " + Printable(meaning.word) +
                                       " changed on the camera meanwhile and were kept; repeat the command.");
  }
}

void AskAboutPictures(Context& context, Camera& camera, std::vector<Meaning>& meanings) {
  if (!CanAsk(context)) return;
  FewOf named;
  for (const Meaning& meaning : meanings) {
    for (const DcfObj& picture : meaning.pictures) named.Add(WithTypes(picture));
  }
  if (named.Count() == 0) return;
  Ask(context, {Counted(named.Count(), "picture") + " to delete on the camera, with all files:", "Delete?",
                "nothing was deleted", named});
  KeepWhatChanged(camera, meanings);
}

ExitCode RunPicturesRm(Context& context) {
  const Session camera(context, "read the picture catalogue");
  const std::vector<DcfObj> catalogue = ReadPictures(*camera);
  std::vector<Meaning> meanings;
  std::set<std::string> named;
  for (const std::string& word : context.call.words) {
    Meaning& meaning = meanings.emplace_back(MeaningOf(catalogue, word));
    std::erase_if(meaning.pictures, [&](const DcfObj& picture) { return !named.insert(PictureName(picture)).second; });
  }
  const bool dry = context.call.Has("dry-run");
  if (!dry) AskAboutPictures(context, *camera, meanings);
  Each each(context, "pictures", CameraResult(camera));
  for (const Meaning& meaning : meanings) {
    if (meaning.failure) each.Try(meaning.word, [&]() -> Json { throw Failure(*meaning.failure); });
    for (const DcfObj& picture : meaning.pictures) {
      each.Try(meaning.word, [&] { return dry ? ShowOne(context, picture) : DeleteOne(context, *camera, picture); });
    }
  }
  Json result = CameraResult(camera);
  return dry ? each.FinishDry(std::move(result), "picture") : each.Finish(std::move(result));
}

constexpr Argument kName[] = {{"NAME",
                               "A picture, such as IMG_0001 or IMG_0001.JPG, or a pattern in quotes. Where two have "
                               "the same name, add the folder: 100ABCDE/IMG_0001.",
                               Argument::Count::kOneOrMore, Offer::kPicture}};
constexpr Option kRmOptions[] = {kDryRunOption, kYesOption};
constexpr Option kOptions[] = {
    {"sheet", 0, "FILE", "Make a contact sheet: an HTML file with a thumbnail of each picture.", Offer::kFile},
    {"force", 'f', "", "Replace an existing sheet."},
    kSinceOption,
    kFolderOption,
};
constexpr Example kRmExamples[] = {
    {"kelva pictures rm 100ABCDE/IMG_0001", "Delete a picture with all its files."},
    {"kelva pictures rm -n 'DSC_00*'", "Show which pictures a pattern would delete."},
};
constexpr Example kExamples[] = {
    {"kelva pictures", "List the pictures on the camera."},
    {"kelva sync ~/Pictures/camera && kelva pictures --sheet ~/Pictures/camera/index.html",
     "Fetch them, and make a page of thumbnails that open them."},
    {"kelva pictures --since 2026-03-14 --folder '100*'", "List those of some days and folders."},
    {"kelva pictures --json | jq '.pictures | length'", "Count them."},
};

constexpr Verb kVerbs[] = {
    {"pictures", "List the camera's picture catalogue, or make a contact sheet of it", kNoArguments, kOptions,
     R"(One line for each picture, then the totals: the types of its files, their size and the picture's time. The camera sends
its catalogue in one answer, and its folders list the sizes, so this is quick however many pictures there are. The time is
a text of the catalogue in the form of a date, in the camera's own time zone, which the camera does not tell; --since
compares with this text, and leaves out pictures without one.

With --sheet the pictures are drawn into one HTML file, which needs no scripts, no network and no other files. It
shows thumbnails of 400 pixels, upright as the camera was held, with name, time, and the types and sizes of the files.
A picture links to its file if that is in the sheet's folder, or below it where `kelva sync` puts it.

The thumbnail that a camera puts into the first 64 KiB of a JPEG file (EXIF) is taken where there is one. Otherwise the
file is read in full. A file that `kelva sync` has fetched into the sheet's folder is read from there if its
SHA-1 is still the same. A few pictures are in memory at a time; as many are drawn at once as there are processors.

A picture that is damaged or missing is reported and gets a placeholder, and the rest goes on (exit status 6). So is a
picture of more than 200 million pixels, or of 40 million if it is progressive.

Thumbnails are kept for the next sheet of the camera, in $XDG_CACHE_HOME/kelva or ~/.cache/kelva, readable for you alone:
of a picture whose name, key and size are unchanged nothing is read. You may delete that folder at any time.

The sheet is written under a temporary name, and gets its own name when all of it is on disk. An existing file is kept
unless you give --force.)",
     R"(pictures: array of folder, name, folder_number, number, types, key and time (null if the catalogue has none),
  and the camera's own value5, value6, value9, block7 and block8 (hexadecimal); then size: the bytes of its files,
  and sizes: those of each, in the order of types (null for a file that its folder does not list)
files: how many these pictures have (without --sheet)
bytes: of all files whose size is listed (without --sheet)
unlisted: how many files have no listed size (without --sheet)
pictures (with --sheet): array of folder, name, time, types, drawn, links (files beside the sheet) and, for a
  picture that is damaged or missing, error
file: the sheet, with --sheet; then also size: its bytes, drawn: thumbnails, fetched: those drawn from files
  beside it, kept: those drawn by an earlier sheet, without_jpeg: pictures without a JPEG file, failed: pictures that were reported)",
     kExamples, RunPictures, true, "sheet"},
    {"pictures rm", "Delete pictures with all their files", kName, kRmOptions,
     R"(A picture is deleted with all its files. The catalogue says which pictures there are. On a terminal the
pictures are named and you are asked first; elsewhere the command itself is consent. In a pattern * ? and [...] match
within a name, in any case of letters.)",
     R"(pictures: array of folder and name, or of path and error
failed: how many were not deleted
dry_run: true with --dry-run)",
     kRmExamples, RunPicturesRm},
};

}  // namespace

std::span<const Verb> PictureVerbs() {
  return kVerbs;
}

}  // namespace apps
