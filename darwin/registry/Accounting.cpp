// How many handles, references, services, entries and ports this process holds, for tests.

#include "darwin/registry/Accounting.h"

#include "darwin/registry/State.h"

namespace darwin {

RegistryAccounting AccountForRegistry() {
  Registry::State& state = SharedState();
  const std::lock_guard lock(state.mutex);
  return {state.handles.Handles(), state.handles.References(), state.services.size(), state.entries.size(),
          state.livePorts};
}

}  // namespace darwin
