#ifndef KELVA_DARWIN_REGISTRY_STATE_H_
#define KELVA_DARWIN_REGISTRY_STATE_H_

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "darwin/registry/Entry.h"
#include "darwin/registry/HandleTable.h"
#include "darwin/registry/Registry.h"

namespace darwin {

class MatchingNotification;
class MessageQueue;

/// What the registry holds. Two locks: `sourceMutex` around the source's calls, and inside of it `mutex` around all
/// else. No user client, factory or callback runs under `mutex`.
struct Registry::State {
  std::mutex sourceMutex;
  std::unique_ptr<RegistrySource> source;
  bool named = false;  // the program chose the source, or the default one was taken
  bool started = false;
  bool failed = false;  // its last call threw: run loops ignore it until a call succeeds
  std::string error;    // what its last failed call said; empty after one that succeeded
  int descriptor = -1;  // what run loops were told to wait for
  bool timed = false;

  std::mutex mutex;
  HandleTable handles;
  EntryId nextId = 1;
  std::shared_ptr<Entry> root;
  std::map<EntryId, std::shared_ptr<Entry>> entries;
  std::vector<std::shared_ptr<Entry>> services;  // registered and active, oldest first
  std::vector<std::weak_ptr<MatchingNotification>> matchings;
  std::vector<std::weak_ptr<MessageQueue>> queues;
  std::size_t livePorts = 0;
};

/// Forgets what has gone.
template <class T>
void Prune(std::vector<std::weak_ptr<T>>& references) {
  std::erase_if(references, [](const std::weak_ptr<T>& reference) { return reference.expired(); });
}

/// The process's registry state.
inline Registry::State& SharedState() {
  return Registry::Shared().GetState();
}

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_STATE_H_
