#include "CameraSource.h"

#include "darwin/registry/Registry.h"
#include "darwin/udev/UdevSource.h"
#include "vcam/client/BusClient.h"

namespace helper {

void UseCamerasOf(const std::string& virtualBus) {
  darwin::Registry::Shared().SetSource(virtualBus.empty() ? darwin::MakeUdevSource()
                                                          : vcam::client::ConnectBus(virtualBus));
}

}  // namespace helper
