// What the I/O registry knows of a camera: who made it, which one it is, and which driver serves it.

#include "apps/camera/Registry.h"

#include "src/usb/osx/OsxCamera.h"
#include "src/usb/osx/RegistryText.h"
#include "wire/RegistryNames.h"

namespace apps {

RegistryCamera FactsOf(const Camera& camera) {
  const io_service_t service = kelva::ServiceOf(camera);
  if (service == 0) return {};
  return {kelva::TextPropertyAbove(service, wire::kSerialName), kelva::TextProperty(service, wire::kVendorName),
          kelva::TextProperty(service, wire::kProductName), kelva::TextProperty(service, wire::kRevisionName),
          kelva::TextProperty(service, wire::kClassName)};
}

}  // namespace apps
