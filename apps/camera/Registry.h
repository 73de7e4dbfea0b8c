#ifndef KELVA_APPS_CAMERA_REGISTRY_H_
#define KELVA_APPS_CAMERA_REGISTRY_H_

#include <string>

#include "src/wifi/Camera.h"

namespace apps {

/// What the I/O registry says of one camera. A text that is missing is empty.
struct RegistryCamera {
  std::string serial;  ///< from the USB device above the camera's service
  std::string vendor;
  std::string product;
  std::string revision;
  std::string driver;  ///< the service's class
};

/// Reads the facts of this camera's own registry entry and of those above it. All of them are empty for a camera of
/// another transport.
RegistryCamera FactsOf(const Camera& camera);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_REGISTRY_H_
