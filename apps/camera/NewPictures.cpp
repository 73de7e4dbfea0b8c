// Compares a camera's picture catalogue with what it was before.
#include "apps/camera/NewPictures.h"

#include <algorithm>
#include <utility>

#include "apps/camera/ListedSizes.h"
#include "apps/camera/Picture.h"
#include "apps/camera/PictureList.h"
#include "apps/commandline/Failure.h"

namespace apps {
namespace {

std::string TokenOf(const DcfObj& picture) {
  return PictureFolder(picture) + "/" + PictureStem(picture) + " " + PictureFingerprint(picture);
}

// Pictures as the catalogue and the listings of their folders show them at one moment.
struct Glimpse {
  std::vector<DcfObj> pictures;
  std::vector<unsigned long long> sizes;

  bool operator==(const Glimpse& other) const {
    return sizes == other.sizes &&
           std::equal(pictures.begin(), pictures.end(), other.pictures.begin(), other.pictures.end(),
                      [](const DcfObj& a, const DcfObj& b) { return EntryBytes(a) == EntryBytes(b); });
  }
};

Glimpse LookAt(Camera& camera, std::vector<DcfObj> pictures) {
  Glimpse seen{std::move(pictures), {}};
  ListedSizes listed(camera);
  for (const DcfObj& picture : seen.pictures) {
    for (const int type : FileTypes(picture)) {
      seen.sizes.push_back(listed.SizeOf(PicturePath(picture, type)).value_or(0));
    }
  }
  return seen;
}

}  // namespace

std::vector<DcfObj> NewPictures::NewIn(const std::vector<DcfObj>& catalogue) const {
  std::vector<DcfObj> appeared;
  if (!looked_) return appeared;
  std::copy_if(catalogue.begin(), catalogue.end(), std::back_inserter(appeared),
               [this](const DcfObj& picture) { return !seen_.contains(TokenOf(picture)); });
  return appeared;
}

std::vector<DcfObj> NewPictures::Since(Camera& camera) const {
  return NewIn(ReadPictures(camera));
}

std::vector<DcfObj> NewPictures::Look(Camera& camera) {
  const std::vector<DcfObj> catalogue = ReadPictures(camera);
  if (catalogue.empty() && looked_) return {};
  std::vector<DcfObj> appeared = NewIn(catalogue);
  seen_.clear();
  seen_.reserve(catalogue.size());
  for (const DcfObj& picture : catalogue) seen_.insert(TokenOf(picture));
  looked_ = true;
  return appeared;
}

std::vector<DcfObj> AwaitPictures(const NewPictures& before, Camera& camera, const Stop& stop,
                                  const std::function<void()>& pause, std::chrono::milliseconds patience) {
  const auto until = std::chrono::steady_clock::now() + patience;
  Glimpse last;
  while (std::chrono::steady_clock::now() < until) {
    stop.Check();
    // A camera that stores a picture may refuse other commands.
    if (camera.IsReady()) {
      Glimpse now = LookAt(camera, before.Since(camera));
      if (!now.pictures.empty() && now == last) return std::move(now.pictures);
      last = std::move(now);
    }
    pause();
  }
  throw Failure(
      ExitCode::kTimedOut,
      last.pictures.empty()
          ? "The camera accepted the command, but its catalogue shows no new picture; `kelva pictures` shows "
            "whether it comes later."
          : "The new picture did not come to rest: its size still changes; fetch it later with `kelva sync`.");
}

}  // namespace apps
