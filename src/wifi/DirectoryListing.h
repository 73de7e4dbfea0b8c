#ifndef KELVA_WIFI_DIRECTORY_LISTING_H_
#define KELVA_WIFI_DIRECTORY_LISTING_H_

#include <span>
#include <vector>

#include "Camera.h"

namespace kelva {

/// The entries of a directory listing as the camera sends it, in its order. `answer` is what arrived and nothing more:
/// counts and offsets are held against it, and an entry that is not wholly inside is left out. An answer without a whole
/// header is an empty directory.
std::vector<CameraDirent> DecodeListing(std::span<const char> answer);

}  // namespace kelva

#endif  // KELVA_WIFI_DIRECTORY_LISTING_H_
