// Chooses where cameras come from: this machine, or a virtual bus.

#include "src/ui/linux/KelvaHelper/CameraSource.h"

#include "bus/BusClient.h"
#include "darwin/registry/Registry.h"
#include "darwin/udev/UdevSource.h"
#include "src/ui/linux/KelvaHelper/Report.h"

namespace helper {

void UseCamerasOf(const std::string& virtualBus) {
  darwin::Registry::Shared().SetSource(virtualBus.empty() ? darwin::MakeUdevSource(Complain)
                                                          : bus::ConnectBus(virtualBus));
}

}  // namespace helper
