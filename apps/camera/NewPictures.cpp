// Compares a camera's picture catalogue with what it was before.
#include "apps/camera/NewPictures.h"

#include <utility>

#include "apps/camera/Picture.h"
#include "apps/camera/PictureList.h"

namespace apps {

std::vector<DcfObj> NewPictures::Look(Camera& camera) {
  const std::vector<DcfObj> catalogue = ReadPictures(camera);
  if (catalogue.empty() && looked_) return {};
  std::vector<DcfObj> appeared;
  std::unordered_set<std::string> now;
  now.reserve(catalogue.size());
  for (const DcfObj& picture : catalogue) {
    std::string token = PictureFolder(picture) + "/" + PictureStem(picture) + " " + PictureFingerprint(picture);
    if (looked_ && !seen_.contains(token)) appeared.push_back(picture);
    now.insert(std::move(token));
  }
  seen_ = std::move(now);
  looked_ = true;
  return appeared;
}

}  // namespace apps
