#include <string>
#include <vector>

#include "camera/Catalogue.h"
#include "camera/Picture.h"
#include "camera/Session.h"
#include "frame/Columns.h"
#include "frame/Failure.h"
#include "frame/Printable.h"
#include "verbs/Each.h"
#include "verbs/Verbs.h"

namespace kelva {
namespace {

ExitCode RunPictures(Context& context) {
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
constexpr Example kRmExamples[] = {{"kelva pictures rm 100ABCDE/IMG_0001", "Delete a picture with all its files."}};
constexpr Example kExamples[] = {
    {"kelva pictures", "List the pictures on the camera."},
    {"kelva pictures --json | jq '.pictures | length'", "Count them."},
};

constexpr Verb kVerbs[] = {
    {"pictures",
     "List the camera's picture catalogue",
     {},
     {},
     "The catalogue is one answer of the camera, so this is quick however many pictures there are.",
     "pictures: array of folder, name, folder_number, number, types, key and time (null when the catalogue has none), "
     "and "
     "the camera's own value5, value6, value9, block7 and block8 (hexadecimal)",
     kExamples,
     RunPictures},
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

}  // namespace kelva
