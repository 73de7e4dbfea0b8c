#ifndef KELVA_DARWIN_VIRTUAL_VIRTUAL_REGISTRY_H_
#define KELVA_DARWIN_VIRTUAL_VIRTUAL_REGISTRY_H_

#include "darwin/registry/CameraEntries.h"
#include "darwin/registry/Registry.h"

namespace darwin {

/// A registry that the program fills: cameras are there when they are attached and go when they are detached,
/// and nothing else is asked. What is still attached goes with this object. Any thread.
class VirtualRegistry {
 public:
  /// The process's registry.
  VirtualRegistry() : VirtualRegistry(Registry::Shared()) {}
  explicit VirtualRegistry(Registry& registry);
  ~VirtualRegistry();
  VirtualRegistry(const VirtualRegistry&) = delete;
  VirtualRegistry& operator=(const VirtualRegistry&) = delete;

  /// Plugs a camera in. Returns what Detach takes.
  EntryId AttachCamera(const CameraDescription& camera);
  /// Pulls a camera out; nothing happens for one that has gone.
  void Detach(EntryId camera);

 private:
  Registry& registry_;
  EntryId bus_;  // the entry that all cameras are below
};

}  // namespace darwin

#endif  // KELVA_DARWIN_VIRTUAL_VIRTUAL_REGISTRY_H_
