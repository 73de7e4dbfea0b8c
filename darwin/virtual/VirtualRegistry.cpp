// The source of cameras that a program attaches and detaches.

#include "darwin/virtual/VirtualRegistry.h"

namespace darwin {

VirtualRegistry::VirtualRegistry(Registry& registry)
    : registry_(registry),
      bus_(registry.Add(registry.Root(), {{"AppleUSBHostController", "IOService", "IORegistryEntry"}, {}, {}})) {}

VirtualRegistry::~VirtualRegistry() {
  registry_.Terminate(bus_);
}

EntryId VirtualRegistry::AttachCamera(const CameraDescription& camera) {
  return AddCamera(registry_, bus_, camera);
}

void VirtualRegistry::Detach(EntryId camera) {
  registry_.Terminate(camera);
}

}  // namespace darwin
