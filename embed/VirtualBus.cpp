// An embedding program's choice of virtual cameras.

#include "embed/VirtualBus.h"

#include "bus/BusClient.h"
#include "darwin/registry/Registry.h"

namespace kelva {

void UseVirtualBus(const std::string& path) {
  darwin::Registry::Shared().SetSource(bus::ConnectBus(path));
}

}  // namespace kelva
