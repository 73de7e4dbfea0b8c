// Finds the files of a camera that its catalogue does not have.
#include "apps/import/Others.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Explain.h"
#include "apps/camera/FolderWalk.h"
#include "apps/camera/Picture.h"
#include "apps/files/SafeName.h"
#include "base/Ascii.h"
#include "base/Hex.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

constexpr std::size_t kMostFiles = 200'000;

std::string WithoutExtension(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  return dot == std::string::npos || path.find('\\', dot) != std::string::npos ? path : path.substr(0, dot);
}

// Whether a path is that of a picture's file. Sixteen bytes for each picture: a catalogue may be long.
class CataloguePaths {
 public:
  explicit CataloguePaths(const std::vector<DcfObj>& catalogue) {
    for (const DcfObj& picture : catalogue) {
      pictures_.emplace_back(Hash(PicturePath(picture, kFirstFileType)), &picture);
    }
    std::sort(pictures_.begin(), pictures_.end());
  }

  /// The path of the picture's file with this name, in any case of letters: the same path where there is one. Empty when no
  /// picture has such a file.
  std::string Like(const std::string& path) const {
    std::string like;
    const auto [first, last] = std::equal_range(pictures_.begin(), pictures_.end(), Entry(Hash(path), nullptr),
                                                [](const Entry& a, const Entry& b) { return a.first < b.first; });
    for (auto entry = first; entry != last; ++entry) {
      for (const int type : FileTypes(*entry->second)) {
        std::string here = PicturePath(*entry->second, type);
        if (here == path) return path;
        if (SameName(here, path)) like = std::move(here);
      }
    }
    return like;
  }

 private:
  using Entry = std::pair<std::size_t, const DcfObj*>;

  static std::size_t Hash(const std::string& path) {
    return std::hash<std::string>()(base::Lower(WithoutExtension(path)));
  }

  std::vector<Entry> pictures_;
};

// The names between "I:" and the end.
std::vector<std::string> NamesIn(const std::string& path) {
  std::vector<std::string> names;
  for (std::size_t slash = path.find('\\'); slash != std::string::npos;) {
    const std::size_t next = path.find('\\', slash + 1);
    names.push_back(path.substr(slash + 1, next == std::string::npos ? next : next - slash - 1));
    slash = next;
  }
  return names;
}

bool Lists(const FolderWalk::Listing& listing, const std::string& name) {
  return std::any_of(listing.files.begin(), listing.files.end(),
                     [&name](const CameraDirent& entry) { return entry.name == name; });
}

void AddOthers(const FolderWalk::Listing& listing, const CataloguePaths& pictures, OtherFiles& found) {
  for (const CameraDirent& entry : listing.files) {
    std::string path = listing.folder + "\\" + entry.name;
    const std::string like = pictures.Like(path);
    // In another case of letters it is the picture's file, unless that is there too.
    if (!like.empty() && (like == path || !Lists(listing, Split(like).name))) continue;
    if (found.files.size() == kMostFiles) {
      found.isCut = true;
      return;
    }
    found.files.push_back({std::move(path), SizeOf(entry)});
  }
}

// In the order of the walk.
OtherFiles Walk(Context& context, Camera& camera, const CataloguePaths& pictures) {
  OtherFiles found;
  FolderWalk walk(context, camera, {"I:\\DCIM", "I:\\MISC"});
  while (true) {
    try {
      const auto listing = walk.Next();
      if (!listing) break;
      AddOthers(*listing, pictures, found);
    } catch (const CameraError& error) {
      // MISC need not be there. What else is wrong shows when files are read.
      const ExitCode code = Explain(error, context).code;
      found.isCut = found.isCut || code != ExitCode::kRefused;
      if (EndsAll(code)) break;
    }
  }
  found.isCut = found.isCut || walk.IsCut();
  return found;
}

}  // namespace

std::string OtherFile::Folder() const {
  const std::vector<std::string> names = NamesIn(path);
  return names.size() > 2 && SameName(names.front(), "DCIM") ? names[1] : "";
}

LocalPath OtherFile::Local() const {
  std::vector<std::string> names = NamesIn(path);
  if (!Folder().empty()) names.erase(names.begin());
  LocalPath local;
  for (const std::string& name : names) local.folders.push_back(SafeName(name));
  local.name = std::move(local.folders.back());
  local.folders.pop_back();
  return local;
}

ManifestKey OtherFile::Key(const std::string& serial) const {
  // Pictures have types from 1 on, and identities of 24 bytes.
  return {serial, "other " + base::Hex(path), 0, std::to_string(size)};
}

OtherFiles FindOthers(Context& context, Camera& camera, const std::vector<DcfObj>& catalogue) {
  return Walk(context, camera, CataloguePaths(catalogue));
}

}  // namespace apps
