// Finds the picture that a person means, and shows pictures in results.

#include "apps/camera/Catalogue.h"

#include <algorithm>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Meant.h"
#include "apps/camera/Picture.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "base/Hex.h"

namespace apps {
namespace {

struct Wanted {
  std::string folder;  ///< empty for any
  std::string stem;
  std::string extension;  ///< empty for any
};

// A backslash parts folders, or begins a byte as it is printed ("\xff").
Wanted Understand(std::string name, bool isPrinted) {
  if (!isPrinted) std::replace(name.begin(), name.end(), '\\', '/');
  const std::size_t slash = name.rfind('/');
  Wanted wanted;
  if (slash != std::string::npos) {
    wanted.folder = name.substr(0, slash);
    wanted.folder = wanted.folder.substr(wanted.folder.rfind('/') + 1);
    name = name.substr(slash + 1);
  }
  const std::size_t dot = name.rfind('.');
  wanted.stem = name.substr(0, dot);
  if (dot != std::string::npos) wanted.extension = name.substr(dot + 1);
  return wanted;
}

bool Matches(const std::string& pattern, const std::string& name) {
  return SameName(pattern, name) || MatchesName(pattern, name);
}

bool MatchesEither(const std::string& pattern, const std::string& name) {
  return Matches(pattern, name) || SameName(pattern, Printable(name));
}

// Whether the picture has such a file: "*.MP4" means no picture, and "*.RAW" none that is a JPG alone.
bool HasType(const DcfObj& picture, const std::string& extension) {
  const std::vector<int> types = FileTypes(picture);
  return extension.empty() || std::any_of(types.begin(), types.end(), [&](int type) {
           return Matches(extension, std::string(FileTypeName(type)));
         });
}

std::vector<DcfObj> Meant(const std::vector<DcfObj>& catalogue, const Wanted& wanted) {
  std::vector<DcfObj> meant;
  for (const DcfObj& picture : catalogue) {
    if (!MatchesEither(wanted.stem, PictureStem(picture)) || !HasType(picture, wanted.extension)) continue;
    if (wanted.folder.empty() || MatchesEither(wanted.folder, PictureFolder(picture))) meant.push_back(picture);
  }
  return meant;
}

std::vector<DcfObj> AllMeant(const std::vector<DcfObj>& catalogue, const std::string& name) {
  std::vector<DcfObj> meant = Meant(catalogue, Understand(name, false));
  if (meant.empty()) meant = Meant(catalogue, Understand(name, true));
  if (!meant.empty()) return meant;
  throw Failure(ExitCode::kFailed, "No picture in the camera's catalogue is called " + Printable(name) +
                                       "; `kelva pictures` lists them all.");
}

}  // namespace

std::string PictureName(const DcfObj& picture) {
  return ShellWord(PictureFolder(picture) + "/" + PictureStem(picture));
}

std::string TypeList(const DcfObj& picture) {
  std::string list;
  for (const int type : FileTypes(picture)) list += (list.empty() ? "" : " ") + std::string(FileTypeName(type));
  return list;
}

DcfObj FindPicture(const std::vector<DcfObj>& catalogue, const std::string& name) {
  const std::vector<DcfObj> meant = AllMeant(catalogue, name);
  if (meant.size() == 1) return meant.front();
  std::string all;
  for (const DcfObj& picture : meant) all += (all.empty() ? "" : ", ") + PictureName(picture);
  throw Failure(ExitCode::kUsage, Printable(name) + " may mean " + all + "; name the folder too.");
}

std::vector<DcfObj> FindPictures(const std::vector<DcfObj>& catalogue, const std::string& name) {
  if (IsPattern(name)) return AllMeant(catalogue, name);
  return {FindPicture(catalogue, name)};
}

Json PictureMembers(const DcfObj& picture) {
  Json types = Json::Array();
  for (const int type : FileTypes(picture)) types.Push(FileTypeName(type));
  Json members = Json::Object();
  members.SetBytes("folder", PictureFolder(picture)).SetBytes("name", PictureStem(picture));
  members.Set("folder_number", picture.directoryNumber)
      .Set("number", picture.fileNumber)
      .Set("types", std::move(types));
  const auto key = PictureKey(picture);
  const auto time = PictureTime(picture);
  members.Set("key", key ? Json(*key) : Json()).Set("time", time ? Json(*time) : Json());
  members.Set("value5", picture.value5)
      .Set("value6", static_cast<double>(picture.value6))
      .Set("value9", picture.value9);
  members.Set("block7", base::Hex({picture.block7, sizeof picture.block7}));
  return members.Set("block8", base::Hex({picture.block8, sizeof picture.block8}));
}

}  // namespace apps
