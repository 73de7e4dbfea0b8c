// On macOS cameras come from IOKit, which has no source that could fail.

#include "embed/CameraSource.h"

namespace kelva {

std::string LastSourceError() {
  return {};
}

}  // namespace kelva
