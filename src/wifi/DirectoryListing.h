#ifndef KELVA_WIFI_DIRECTORY_LISTING_H_
#define KELVA_WIFI_DIRECTORY_LISTING_H_

#include <span>
#include <vector>

#include "Camera.h"

namespace kelva {

/// Decodes a directory listing; the entries keep the camera's order. Counts and offsets are checked against `answer`:
/// an entry outside of `answer` is left out, and a name without a NUL ends where `answer` ends. An answer shorter than
/// its header is an empty directory.
std::vector<CameraDirent> DecodeListing(std::span<const char> answer);

}  // namespace kelva

#endif  // KELVA_WIFI_DIRECTORY_LISTING_H_
