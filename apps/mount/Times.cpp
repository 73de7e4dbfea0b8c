// When the pictures of a mounted camera were taken.
#include "apps/mount/Times.h"

#include <algorithm>
#include <functional>

#include "apps/camera/Picture.h"
#include "apps/import/TakenTime.h"
#include "base/Ascii.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

// Without the extension: all files of a picture have its time.
std::size_t KeyOf(const std::string& path) {
  const std::size_t name = path.rfind('\\') + 1;
  const std::size_t dot = path.rfind('.');
  return std::hash<std::string>()(base::Lower(dot == std::string::npos || dot < name ? path : path.substr(0, dot)));
}

}  // namespace

bool Times::Fill(Camera& camera, const std::string& path, ShownFolder& folder) {
  if (!base::Lower(path).starts_with("i:\\dcim\\")) return false;
  bool lacks = false;
  const auto fill = [&] {
    lacks = false;
    for (ShownEntry& entry : folder.Entries()) {
      if (!entry.isFolder && (entry.changed = Of(path + "\\" + entry.name)) == 0) lacks = true;
    }
  };
  fill();
  if (!lacks || (wasRead_ && Clock::now() < again_)) return false;
  Read(camera);
  fill();
  return true;
}

void Times::Read(Camera& camera) {
  const auto start = Clock::now();
  try {
    times_.clear();
    for (const DcfObj& picture : camera.GetDcf()) {
      const std::vector<int> types = FileTypes(picture);
      const auto taken = CatalogueTaken(picture);
      if (!types.empty() && taken) times_.emplace_back(KeyOf(PicturePath(picture, types.front())), MomentHere(*taken));
    }
    std::sort(times_.begin(), times_.end());
  } catch (const CameraError&) {
    // Whoever reads a file next sees what is wrong.
  }
  times_.shrink_to_fit();
  wasRead_ = true;
  // Files that are no pictures are never in there.
  constexpr int kSeldom = 20;
  again_ = Clock::now() + std::max<Clock::duration>(std::chrono::seconds(5), kSeldom * (Clock::now() - start));
}

std::time_t Times::Of(const std::string& path) const {
  const auto found = std::lower_bound(times_.begin(), times_.end(), std::pair(KeyOf(path), std::time_t{0}));
  return found != times_.end() && found->first == KeyOf(path) ? found->second : 0;
}

}  // namespace apps
