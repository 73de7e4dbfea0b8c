#ifndef KELVA_APPS_CAMERA_NEW_PICTURES_H_
#define KELVA_APPS_CAMERA_NEW_PICTURES_H_

#include <chrono>
#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "apps/commandline/Stop.h"
#include "src/wifi/Camera.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// Finds the pictures that appear in a camera's catalogue, by reading it again and again.
class NewPictures {
 public:
  /// The pictures that were not in the catalogue at the look before; none at the first look. A different picture that
  /// reuses an old name is new. Needs an open camera. Throws as ReadPictures does. A read that failed, and an empty
  /// catalogue, which may be one that failed without a word, are compared with nothing later.
  std::vector<DcfObj> Look(Camera& camera);
  /// The pictures that were not in the catalogue at the last look, which stays the one that later looks compare with.
  std::vector<DcfObj> Since(Camera& camera) const;

 private:
  std::vector<DcfObj> NewIn(const std::vector<DcfObj>& catalogue) const;

  std::unordered_set<std::string> seen_;
  bool looked_ = false;
};

/// Looks again and again, with a call of `pause` between two looks, until pictures have appeared since the last look of
/// `before`, and their entries and the sizes of the files in their folders have stayed the same from one look to the next.
/// Throws Stopped, what `pause` throws, and Failure(kTimedOut) after `patience`.
std::vector<DcfObj> AwaitPictures(const NewPictures& before, Camera& camera, const Stop& stop,
                                  const std::function<void()>& pause, std::chrono::milliseconds patience);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_NEW_PICTURES_H_
