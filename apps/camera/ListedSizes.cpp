// Compares the size of a file that arrived with the size that its folder lists.

#include "apps/camera/ListedSizes.h"

#include <algorithm>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/FolderListing.h"
#include "base/Ascii.h"
#include "src/wifi/CameraError.h"

namespace apps {

SizesByName ReadSizes(Camera& camera, const std::string& folder) {
  SizesByName sizes;
  for (const CameraDirent& entry : ListFolder(camera, folder)) {
    if ((entry.attributes & (kelva::kAttributeVolumeLabel | kelva::kAttributeDirectory)) != 0) continue;
    sizes.emplace(base::Lower(entry.name), SizeOf(entry));
  }
  return sizes;
}

std::optional<bool> ListedSizes::Agrees(const std::string& cameraPath, unsigned long long size) {
  const SplitPath path = Split(cameraPath);
  const bool fresh = !Recall(path.folder);
  if (fresh) Read(path.folder);
  if (LookUp(path.name) && listed_ == size) return true;
  if (!fresh) Read(path.folder);
  if (!LookUp(path.name)) return std::nullopt;
  return listed_ == size;
}

std::optional<unsigned long long> ListedSizes::SizeOf(const std::string& cameraPath) {
  const SplitPath path = Split(cameraPath);
  try {
    if (!Recall(path.folder)) Read(path.folder);
  } catch (const CameraError&) {
    // Not asked again for each of its files; what is wrong shows when a file is read.
    Keep({path.folder, {}});
  }
  return LookUp(path.name) ? std::optional(listed_) : std::nullopt;
}

bool ListedSizes::LookUp(const std::string& name) {
  const SizesByName& sizes = folders_.front().sizes;
  const auto found = sizes.find(base::Lower(name));
  listed_ = found == sizes.end() ? 0 : found->second;
  return found != sizes.end();
}

bool ListedSizes::Recall(const std::string& path) {
  const auto found =
      std::find_if(folders_.begin(), folders_.end(), [&path](const Folder& folder) { return folder.path == path; });
  if (found == folders_.end()) return false;
  folders_.splice(folders_.begin(), folders_, found);
  return true;
}

void ListedSizes::Read(const std::string& path) {
  // Before the camera is asked: a listing that fails leaves none.
  if (Recall(path)) folders_.pop_front();
  Keep({path, ReadSizes(camera_, path)});
}

void ListedSizes::Keep(Folder folder) {
  constexpr std::size_t kMostFolders = 8;
  folders_.push_front(std::move(folder));
  if (folders_.size() > kMostFolders) folders_.pop_back();
}

}  // namespace apps
