// Entries, services, and the source that fills them: who is told about a change, and under which lock.

#include "darwin/registry/Registry.h"

#include <IOKit/IOMessage.h>

#include <algorithm>
#include <exception>
#include <utility>

#include "darwin/registry/Connection.h"
#include "darwin/registry/DefaultSource.h"
#include "darwin/registry/Notification.h"
#include "darwin/registry/State.h"

namespace darwin {
namespace {

constexpr EntryId kRootId = 1;

/// Objects that have lost their last owner under the lock; destroyed after it.
using Graveyard = std::vector<std::shared_ptr<void>>;

/// The entry and all that is below it, parents first.
std::vector<std::shared_ptr<Entry>> Subtree(const std::shared_ptr<Entry>& top) {
  std::vector<std::shared_ptr<Entry>> all{top};
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (const std::weak_ptr<Entry>& child : std::vector<std::weak_ptr<Entry>>(all[i]->children)) {
      if (std::shared_ptr<Entry> entry = child.lock(); entry != nullptr && entry->active) {
        all.push_back(std::move(entry));
      }
    }
  }
  return all;
}

/// Takes the entry out of matching results and ends its handles and connections. Clients and last owners go to the
/// graveyard: their destructors may call back into the registry, so they run after the lock.
void Deactivate(Registry::State& state, const std::shared_ptr<Entry>& entry, Graveyard& graveyard) {
  entry->active = false;
  state.entries.erase(entry->Id());
  std::erase(state.services, entry);
  graveyard.push_back(state.handles.Kill(entry.get()));
  for (const std::weak_ptr<Connection>& reference : entry->connections) {
    if (const std::shared_ptr<Connection> connection = reference.lock()) {
      graveyard.push_back(std::exchange(connection->client, nullptr));
      graveyard.push_back(state.handles.Kill(connection.get()));
    }
  }
  entry->connections.clear();
}

/// Queues a message for everyone who registered for this service. Callbacks run later, on their own run loops.
void TellInterested(const std::shared_ptr<Entry>& entry, std::uint32_t messageType, Graveyard& graveyard) {
  Prune(entry->interests);
  for (const std::weak_ptr<InterestNotification>& reference : entry->interests) {
    if (const std::shared_ptr<InterestNotification> interest = reference.lock()) {
      interest->OnMessage(entry, messageType, interest);
      graveyard.push_back(interest);
    }
  }
}

/// Has the source publish what is present or what has changed. An exception becomes state: the callers are C functions
/// of the frameworks, which can only return an error code.
void AskSource(Registry& registry, Registry::State& state) {
  try {
    if (!state.started) {
      state.source->Start(registry);
      state.started = true;
    } else {
      state.source->Dispatch(registry);
    }
    state.failed = false;
    state.error.clear();
  } catch (const std::exception& error) {
    state.failed = true;
    state.error = error.what();
  }
}

bool IsWaitedFor(const Registry::State& state) {
  return state.source != nullptr && state.started && !state.failed;
}

bool HasPorts(Registry::State& state) {
  const std::lock_guard lock(state.mutex);
  return state.livePorts != 0;
}

/// Wakes run loops on other threads when the source's descriptor or deadline changed. Skipped without a port: asking
/// would trigger warnings for nobody.
void NoteWhatIsWaitedFor(Registry::State& state) {
  if (!HasPorts(state)) return;
  const int descriptor = IsWaitedFor(state) ? state.source->Descriptor() : -1;
  const bool timed = IsWaitedFor(state) && state.source->TimeoutMs() >= 0;
  const bool wasTimed = std::exchange(state.timed, timed);
  if (std::exchange(state.descriptor, descriptor) == descriptor && (wasTimed || !timed)) return;
  const std::lock_guard lock(state.mutex);
  Prune(state.queues);
  for (const std::weak_ptr<MessageQueue>& reference : state.queues) {
    if (const std::shared_ptr<MessageQueue> queue = reference.lock()) queue->Nudge();
  }
}

}  // namespace

Registry::Registry() : state_(std::make_unique<State>()) {
  state_->root = std::make_shared<Entry>(kRootId, nullptr, EntryDescription{{"IORegistryEntry"}, {}, {}});
  state_->entries.emplace(kRootId, state_->root);
  state_->nextId = kRootId + 1;
}

Registry::~Registry() = default;

Registry& Registry::Shared() {
  // Never destroyed: handles may be given back while the process ends.
  static auto* registry = new Registry();
  return *registry;
}

void Registry::SetSource(std::unique_ptr<RegistrySource> source) {
  const std::lock_guard lock(state_->sourceMutex);
  state_->source = std::move(source);
  state_->named = true;
  state_->started = false;
  state_->failed = false;
  state_->error.clear();
}

std::string Registry::LastSourceError() const {
  const std::lock_guard lock(state_->sourceMutex);
  return state_->error;
}

std::string Registry::WhyDeaf() const {
  const std::lock_guard lock(state_->sourceMutex);
  return IsWaitedFor(*state_) ? state_->source->WhyDeaf() : std::string();
}

EntryId Registry::Root() const {
  return kRootId;
}

EntryId Registry::Add(EntryId parent, EntryDescription description) {
  const std::lock_guard lock(state_->mutex);
  const auto above = state_->entries.find(parent);
  if (above == state_->entries.end()) return 0;
  const EntryId id = state_->nextId++;
  auto entry = std::make_shared<Entry>(id, above->second, std::move(description));
  Prune(above->second->children);
  above->second->children.push_back(entry);
  state_->entries.emplace(id, std::move(entry));
  return id;
}

void Registry::RegisterService(EntryId id) {
  Graveyard graveyard;
  const std::lock_guard lock(state_->mutex);
  const auto found = state_->entries.find(id);
  // A service is announced once, however often its back end registers it.
  if (found == state_->entries.end() || std::exchange(found->second->registered, true)) return;
  state_->services.push_back(found->second);
  Prune(state_->matchings);
  for (const std::weak_ptr<MatchingNotification>& reference : state_->matchings) {
    if (const std::shared_ptr<MatchingNotification> notification = reference.lock()) {
      notification->OnRegistered(found->second, notification);
      graveyard.push_back(notification);
    }
  }
}

void Registry::SendMessage(EntryId id, std::uint32_t messageType) {
  Graveyard graveyard;
  const std::lock_guard lock(state_->mutex);
  const auto found = state_->entries.find(id);
  if (found != state_->entries.end()) TellInterested(found->second, messageType, graveyard);
}

void Registry::Terminate(EntryId id) {
  Graveyard graveyard;
  const std::lock_guard lock(state_->mutex);
  const auto found = state_->entries.find(id);
  if (found == state_->entries.end() || id == kRootId) return;
  const std::vector<std::shared_ptr<Entry>> ended = Subtree(found->second);
  for (const std::shared_ptr<Entry>& entry : ended) Deactivate(*state_, entry, graveyard);
  // The order of the kernel: all connections of the subtree fail first, then the messages go out.
  for (const std::shared_ptr<Entry>& entry : ended) {
    TellInterested(entry, kIOMessageServiceIsTerminated, graveyard);
    graveyard.push_back(entry);
  }
}

// Under sourceMutex alone: the source publishes during the call, which locks `mutex`.
bool Registry::LookAgain() {
  const std::lock_guard lock(state_->sourceMutex);
  if (!std::exchange(state_->named, true)) state_->source = DefaultSource();
  if (state_->source == nullptr) return true;
  AskSource(*this, *state_);
  NoteWhatIsWaitedFor(*state_);
  return !state_->failed;
}

int Registry::SourceDescriptor() const {
  const std::lock_guard lock(state_->sourceMutex);
  return IsWaitedFor(*state_) ? state_->source->Descriptor() : -1;
}

int Registry::SourceTimeoutMs() const {
  const std::lock_guard lock(state_->sourceMutex);
  return IsWaitedFor(*state_) ? state_->source->TimeoutMs() : -1;
}

}  // namespace darwin
