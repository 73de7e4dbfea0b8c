// Compares the size of a file that arrived with the size that its folder lists.

#include "apps/camera/ListedSizes.h"

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
  const bool fresh = folder_ != path.folder;
  if (fresh) Read(path.folder);
  if (LookUp(path.name) && listed_ == size) return true;
  if (!fresh) Read(path.folder);
  if (!LookUp(path.name)) return std::nullopt;
  return listed_ == size;
}

std::optional<unsigned long long> ListedSizes::SizeOf(const std::string& cameraPath) {
  const SplitPath path = Split(cameraPath);
  try {
    if (folder_ != path.folder) Read(path.folder);
  } catch (const CameraError&) {
    // Not asked again for each of its files; what is wrong shows when a file is read.
    folder_ = path.folder;
  }
  return LookUp(path.name) ? std::optional(listed_) : std::nullopt;
}

bool ListedSizes::LookUp(const std::string& name) {
  const auto found = sizes_.find(base::Lower(name));
  listed_ = found == sizes_.end() ? 0 : found->second;
  return found != sizes_.end();
}

void ListedSizes::Read(const std::string& folder) {
  folder_.reset();
  sizes_.clear();
  sizes_ = ReadSizes(camera_, folder);
  folder_ = folder;
}

}  // namespace apps
