#ifndef KELVA_DARWIN_VIRTUAL_VIRTUAL_REGISTRY_H_
#define KELVA_DARWIN_VIRTUAL_VIRTUAL_REGISTRY_H_

#include "darwin/registry/CameraEntries.h"
#include "darwin/registry/Registry.h"

namespace darwin {

/// A registry that the program fills: AttachCamera adds a camera, Detach removes it, and the destructor removes those
/// that are left. Any thread.
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
  /// Pulls a camera out, if it is still there.
  void Detach(EntryId camera);

 private:
  Registry& registry_;
  EntryId bus_;  // the entry that all cameras are below
};

}  // namespace darwin

#endif  // KELVA_DARWIN_VIRTUAL_VIRTUAL_REGISTRY_H_
