#include "apps/camera/ListedSizes.h"

#include <algorithm>

#include "apps/camera/CameraPath.h"

namespace apps {
namespace {

// The camera's file system does not tell capital letters from small ones.
std::string Folded(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return name;
}

}  // namespace

std::optional<bool> ListedSizes::Agrees(const std::string& cameraPath, unsigned long long size) {
  const SplitPath path = Split(cameraPath);
  const bool fresh = folder_ != path.folder;
  if (fresh) Read(path.folder);
  if (LookUp(path.name) && listed_ == size) return true;
  if (!fresh) Read(path.folder);
  if (!LookUp(path.name)) return std::nullopt;
  return listed_ == size;
}

bool ListedSizes::LookUp(const std::string& name) {
  const auto found = sizes_.find(Folded(name));
  listed_ = found == sizes_.end() ? 0 : found->second;
  return found != sizes_.end();
}

void ListedSizes::Read(const std::string& folder) {
  folder_.reset();
  sizes_.clear();
  for (const CameraDirent& entry : camera_.ReadDir(folder.c_str())) {
    if ((entry.attributes & (kAttributeVolumeLabel | kAttributeDirectory)) == 0) {
      sizes_.emplace(Folded(entry.name), SizeOf(entry));
    }
  }
  folder_ = folder;
}

}  // namespace apps
