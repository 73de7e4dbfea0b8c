#ifndef KELVA_APPS_CAMERA_REGISTRY_H_
#define KELVA_APPS_CAMERA_REGISTRY_H_

#include <string>
#include <vector>

namespace apps {

/// What the I/O registry says of one camera's service. A text that is missing is empty.
struct RegistryCamera {
  std::string serial;  ///< from the USB device above the service
  std::string vendor;
  std::string product;
  std::string revision;
  std::string driver;  ///< the service's class
};

/// The services of the camera's drivers, those of this maker only, in the order in which the library lists cameras.
/// Empty when the search fails; the library's own search then says so.
std::vector<RegistryCamera> CamerasInRegistry();

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_REGISTRY_H_
