// Goes through a camera's folders, within bounds.
#include "apps/camera/FolderWalk.h"

#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/FolderListing.h"
#include "apps/camera/Turns.h"

namespace apps {

FolderWalk::FolderWalk(Context& context, Camera& camera, const std::vector<std::string>& roots)
    : context_(context), camera_(camera) {
  for (auto root = roots.rbegin(); root != roots.rend(); ++root) places_.push_back({*root, 0});
}

std::optional<FolderWalk::Listing> FolderWalk::Next() {
  if (places_.empty()) return std::nullopt;
  const Place place = std::move(places_.back());
  places_.pop_back();
  folder_ = place.path;
  context_.stop.Check();
  LetOthers(context_);
  context_.Doing("list " + ShownPath(folder_));
  Listing listing{folder_, {}};
  for (CameraDirent& entry : ListFolder(camera_, folder_)) {
    if ((entry.attributes & kelva::kAttributeVolumeLabel) != 0) continue;
    if (entry.name.empty() || entry.name == "." || entry.name == "..") continue;
    if ((entry.attributes & kelva::kAttributeDirectory) == 0) {
      listing.files.push_back(std::move(entry));
    } else if (place.depth == kDeepest || found_ == kMostFolders) {
      isCut_ = true;
    } else {
      ++found_;
      places_.push_back({folder_ + "\\" + entry.name, place.depth + 1});
    }
  }
  return listing;
}

}  // namespace apps
