// The verbs pictures and pictures rm.
#include <string>
#include <vector>

#include "apps/camera/Catalogue.h"
#include "apps/camera/Picture.h"
#include "apps/camera/PictureList.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Columns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/kelva/verbs/Each.h"
#include "apps/kelva/verbs/SheetRun.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

ExitCode RunPictures(Context& context) {
  if (const auto sheet = context.call.Value("sheet")) return RunSheet(context, *sheet);
  if (context.call.Has("force")) throw Failure(ExitCode::kUsage, "--force goes with --sheet; a list replaces nothing.");
  const Session camera(context, "read the picture catalogue");
  const std::vector<DcfObj> catalogue = ReadPictures(*camera);
  Json list = Json::Array();
  std::vector<std::vector<std::string>> rows = {{"PICTURE", "FILES", "TIME"}};
  for (const DcfObj& picture : catalogue) {
    if (context.Json()) list.Push(PictureMembers(picture));
    rows.push_back({PictureName(picture), TypeList(picture), PictureTime(picture).value_or("no date")});
  }
  context.Result(CameraResult(camera).Set("pictures", std::move(list)), catalogue.empty() ? "" : Columns(rows));
  if (catalogue.empty()) context.reporter.Note("There are no pictures in the camera's catalogue.");
  return ExitCode::kDone;
}

ExitCode RunPicturesRm(Context& context) {
  const Session camera(context, "read the picture catalogue");
  const std::vector<DcfObj> catalogue = ReadPictures(*camera);
  Each each(context, "pictures");
  for (const std::string& name : context.call.words) {
    each.Try(name, [&] {
      context.stop.Check();
      context.Doing("delete the picture " + Printable(name));
      const DcfObj picture = FindPicture(catalogue, name);
      if (!camera->DeleteDcfObject(picture)) {
        throw Failure(ExitCode::kRefused, "The camera refused to delete the picture " + PictureName(picture) + ".");
      }
      return Json::Object().SetBytes("folder", PictureFolder(picture)).SetBytes("name", PictureStem(picture));
    });
  }
  return each.Finish(CameraResult(camera));
}

constexpr Argument kName[] = {
    {"NAME", "A picture, such as IMG_0001. Where two have the same name, add the folder: 100ABCDE/IMG_0001.",
     Argument::Count::kOneOrMore}};
constexpr Option kOptions[] = {
    {"sheet", 0, "FILE", "Make a contact sheet: an HTML file with a thumbnail of each picture.", Offer::kFile},
    {"force", 'f', "", "Replace an existing sheet."},
};
constexpr Example kRmExamples[] = {{"kelva pictures rm 100ABCDE/IMG_0001", "Delete a picture with all its files."}};
constexpr Example kExamples[] = {
    {"kelva pictures", "List the pictures on the camera."},
    {"kelva sync ~/Pictures/camera && kelva pictures --sheet ~/Pictures/camera/index.html",
     "Fetch them, and make a page of thumbnails that open them."},
    {"kelva pictures --json | jq '.pictures | length'", "Count them."},
};

constexpr Verb kVerbs[] = {
    {"pictures", "List the camera's picture catalogue, or make a contact sheet of it", kNoArguments, kOptions,
     R"(The camera sends its catalogue in one answer, so this is quick however many pictures there are.

With --sheet the pictures are drawn into one HTML file, which needs no scripts, no network and no other files. It
shows thumbnails of 400 pixels, upright as the camera was held, with name, time, and the types and sizes of the files.
A picture links to its file if that is in the sheet's folder, or below it where `kelva sync` puts it.

Each JPEG file is read in full, because a camera sends only whole files. A file that `kelva sync` has fetched into the
sheet's folder is read from there if its SHA-1 is still the same. A few pictures are in memory at a time; as
many are drawn at once as there are processors.

A picture that is damaged or missing is reported and gets a placeholder, and the rest goes on (exit status 6). So is a
picture of more than 200 million pixels, or of 40 million if it is progressive.

The sheet is written under a temporary name, and gets its own name when all of it is on disk. An existing file is kept
unless you give --force.)",
     R"(pictures: array of folder, name, folder_number, number, types, key and time (null if the catalogue has none),
  and the camera's own value5, value6, value9, block7 and block8 (hexadecimal)
pictures (with --sheet): array of folder, name, time, types, drawn, links (files beside the sheet) and, for a
  picture that is damaged or missing, error
file: the sheet, with --sheet; then also size: its bytes, drawn: thumbnails, fetched: those drawn from files
  beside it, without_jpeg: pictures without a JPEG file, failed: pictures that were reported)",
     kExamples, RunPictures, true, "sheet"},
    {"pictures rm", "Delete pictures with all their files", kName, kNoOptions,
     "A picture is deleted with all its files. The catalogue says which pictures there are.",
     "pictures: array of folder and name, or of path and error\nfailed: how many were not deleted", kRmExamples,
     RunPicturesRm},
};

}  // namespace

std::span<const Verb> PictureVerbs() {
  return kVerbs;
}

}  // namespace apps
