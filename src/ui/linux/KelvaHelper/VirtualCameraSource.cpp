// Chooses where cameras come from in a build without udev: a virtual bus, or nowhere.

#include "bus/BusClient.h"
#include "darwin/registry/Registry.h"
#include "src/ui/linux/KelvaHelper/CameraSource.h"

namespace helper {

void UseCamerasOf(const std::string& virtualBus) {
  darwin::Registry::Shared().SetSource(virtualBus.empty() ? nullptr : bus::ConnectBus(virtualBus));
}

}  // namespace helper
