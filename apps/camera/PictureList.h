#ifndef KELVA_APPS_CAMERA_PICTURE_LIST_H_
#define KELVA_APPS_CAMERA_PICTURE_LIST_H_

#include <vector>

#include "src/wifi/Camera.h"

namespace apps {

/// The most pictures that the tool takes from a catalogue.
inline constexpr long long kMostPictures = 1'000'000;

/// As Camera::GetDcf, within bounds of memory, since a camera chooses the number and the size of the records. Throws
/// Failure as soon as the records are too short to name a picture, or there are more than kMostPictures.
std::vector<DcfObj> ReadPictures(Camera& camera);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_PICTURE_LIST_H_
