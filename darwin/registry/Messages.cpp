// What a notification port delivers: a match, or a message about one service.

#include "darwin/registry/Messages.h"

#include <mutex>

#include "darwin/registry/State.h"

namespace darwin {
namespace {

/// A reference for the length of a callback, also of one that throws.
class CallReference {
 public:
  explicit CallReference(io_object_t object) : object_(object) {}
  ~CallReference() { IOObjectRelease(object_); }
  CallReference(const CallReference&) = delete;
  CallReference& operator=(const CallReference&) = delete;

 private:
  const io_object_t object_;
};

}  // namespace

void MatchMessage::Deliver() {
  const std::shared_ptr<MatchingNotification> notification = notification_.lock();
  if (notification == nullptr) return;
  {
    const std::lock_guard lock(SharedState().mutex);
    if (SharedState().handles.Find(notification->handle) != notification) return;
    // The message carries a reference, so that the iterator outlives its release in the callback.
    SharedState().handles.Retain(notification->handle);
  }
  const CallReference reference(notification->handle);
  notification->callback(notification->context, notification->handle);
}

void InterestMessage::Deliver() {
  const std::shared_ptr<InterestNotification> notification = notification_.lock();
  if (notification == nullptr) return;
  io_service_t service = 0;
  {
    const std::lock_guard lock(SharedState().mutex);
    service = SharedState().handles.Grant(entry_);
  }
  const CallReference reference(service);
  notification->callback(notification->context, service, type_, nullptr);
}

}  // namespace darwin
