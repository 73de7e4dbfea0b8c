// Paths and pictures of a camera, for the completions of a shell.
#include "apps/camera/CameraWords.h"

#include <set>

#include "apps/camera/CameraPath.h"
#include "apps/camera/FolderListing.h"
#include "apps/camera/Picture.h"
#include "apps/camera/PictureList.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

// As the camera lists it, where it is typed in another case of letters.
std::string FolderTyped(Camera& camera, const std::string& typed) {
  std::string path = ToCameraPath(typed.empty() ? "/" : typed);
  const SplitPath split = Split(path);
  if (split.name.empty()) return path;
  const auto entry = FindEntry(camera, path);
  return entry ? split.folder + "\\" + entry->name : path;
}

}  // namespace

std::vector<std::string> PathsBeginning(Camera& camera, const std::string& typed) {
  const bool isDrive = typed.size() == 2 && typed.back() == ':';
  const std::string before = isDrive ? typed + "/" : typed.substr(0, typed.rfind('/') + 1);
  std::vector<std::string> paths;
  for (const CameraDirent& entry : ListFolder(camera, FolderTyped(camera, before))) {
    if (!IsNamed(entry)) continue;
    const bool folder = (entry.attributes & kelva::kAttributeDirectory) != 0;
    paths.push_back(before + entry.name + (folder ? "/" : ""));
  }
  return paths;
}

std::vector<std::string> PicturesBeginning(Camera& camera, const std::string& typed) {
  const bool inFolder = typed.find('/') != std::string::npos;
  std::set<std::string> words;
  std::set<std::string> ambiguous;
  for (const DcfObj& picture : ReadPictures(camera)) {
    const std::string folder = PictureFolder(picture) + "/";
    const std::string stem = PictureStem(picture);
    if (inFolder) {
      words.insert(folder + stem);
      continue;
    }
    words.insert(folder);
    if (!words.insert(stem).second) ambiguous.insert(stem);
  }
  for (const std::string& stem : ambiguous) words.erase(stem);
  return {words.begin(), words.end()};
}

std::vector<std::string> PictureFolders(Camera& camera) {
  std::vector<std::string> names;
  for (const CameraDirent& entry : ListFolder(camera, "I:\\DCIM")) {
    const bool folder = (entry.attributes & kelva::kAttributeDirectory) != 0;
    // A slash at the end would make the name a beginning for the shell.
    if (folder && IsNamed(entry) && entry.name.find('/') == std::string::npos) names.push_back(entry.name);
  }
  return names;
}

}  // namespace apps
