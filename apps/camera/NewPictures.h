#ifndef KELVA_APPS_CAMERA_NEW_PICTURES_H_
#define KELVA_APPS_CAMERA_NEW_PICTURES_H_

#include <string>
#include <unordered_set>
#include <vector>

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

 private:
  std::unordered_set<std::string> seen_;
  bool looked_ = false;
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_NEW_PICTURES_H_
