#include <string>
#include <vector>

#include "apps/camera/Catalogue.h"
#include "apps/camera/Picture.h"
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
  context.Doing("read the picture catalogue");
  const Session camera(context);
  const std::vector<DcfObj> catalogue = camera->GetDcf();
  Json list = Json::Array();
  std::vector<std::vector<std::string>> rows = {{"PICTURE", "FILES", "TIME"}};
  for (const DcfObj& picture : catalogue) {
    if (context.Json()) list.Push(PictureMembers(picture));
    rows.push_back({PictureName(picture), TypeList(picture), PictureTime(picture).value_or("")});
  }
  context.Result(CameraResult(camera).Set("pictures", std::move(list)), catalogue.empty() ? "" : Columns(rows));
  if (catalogue.empty()) context.reporter.Note("There are no pictures in the camera's catalogue.");
  return ExitCode::kDone;
}

ExitCode RunPicturesRm(Context& context) {
  context.Doing("read the picture catalogue");
  const Session camera(context);
  const std::vector<DcfObj> catalogue = camera->GetDcf();
  Each each(context, "pictures");
  for (const std::string& name : context.call.words) {
    each.Try(name, [&] {
      context.stop.Check();
      context.Doing("delete the picture " + Printable(name));
      const DcfObj picture = FindPicture(catalogue, name);
      if (!camera->DeleteDcfObject(picture)) {
        throw Failure(ExitCode::kRefused, "The camera refused to delete the picture " + PictureName(picture) + ".");
      }
      Json members = Json::Object();
      members.SetBytes("folder", PictureFolder(picture));
      return std::move(members.SetBytes("name", PictureStem(picture)));
    });
  }
  return each.Finish(CameraResult(camera));
}

constexpr Argument kName[] = {
    {"NAME", "A picture, such as IMG_0001; with its folder, 100ABCDE/IMG_0001, where two have the same name.",
     Argument::Count::kOneOrMore}};
constexpr Option kOptions[] = {
    {"sheet", 0, "FILE", "Make a contact sheet: an HTML file with a thumbnail of each picture.", Offer::kFile},
    {"force", 'f', "", "Replace a sheet that is there already."},
};
constexpr Example kRmExamples[] = {{"kelva pictures rm 100ABCDE/IMG_0001", "Delete a picture with all its files."}};
constexpr Example kExamples[] = {
    {"kelva pictures", "List the pictures on the camera."},
    {"kelva sync ~/Pictures/camera && kelva pictures --sheet ~/Pictures/camera/index.html",
     "Fetch them, and make a page of thumbnails that open them."},
    {"kelva pictures --json | jq '.pictures | length'", "Count them."},
};

constexpr Verb kVerbs[] = {
    {"pictures",
     "List the camera's picture catalogue, or make a contact sheet of it",
     {},
     kOptions,
     "The catalogue is one answer of the camera, so this is quick however many pictures there are.\n\n"
     "With --sheet the pictures are drawn into one HTML file, which needs neither scripts nor a network nor other "
     "files: "
     "thumbnails of 400 pixels, upright as the camera was held, with name, time, and the types and sizes of the files. "
     "A file that is in the sheet's folder, or below it where `kelva sync` puts it, is linked.\n\n"
     "A camera hands over whole files only, and nothing says what its 128 files hold, so each JPEG file is read as a "
     "whole; one that `kelva sync` has fetched into the sheet's folder is read there, when its SHA-1 is "
     "still "
     "the same. One picture is in memory at a time. A picture that is damaged or missing is reported and gets a "
     "placeholder, and the rest goes on (exit status 6); so is one of more than 200 million pixels, or 40 million when "
     "it is progressive. The sheet is written under a temporary name and gets its own "
     "when it is whole and on disk; a file that is there already is left as it is, unless --force is given.",
     "pictures: array of folder, name, folder_number, number, types, key and time (null when the catalogue has none), "
     "and the camera's own value5, value6, value9, block7 and block8 (hexadecimal)\n"
     "pictures (with --sheet): array of folder, name, time, types, drawn, links (files beside the sheet) and, for a "
     "picture that is damaged or missing, error\n"
     "file: the sheet, with --sheet; then also size: its bytes, drawn: thumbnails, fetched: those drawn from files "
     "beside "
     "it, without_jpeg: pictures without a JPEG file, failed: pictures that were reported",
     kExamples,
     RunPictures,
     true,
     "sheet"},
    {"pictures rm",
     "Delete pictures with all their files",
     kName,
     {},
     "The catalogue says which pictures there are; all files of a picture go together.",
     "pictures: array of folder and name, or of path and error\nfailed: how many were not deleted",
     kRmExamples,
     RunPicturesRm},
};

}  // namespace

std::span<const Verb> PictureVerbs() {
  return kVerbs;
}

}  // namespace apps
