#ifndef KELVA_DARWIN_REGISTRY_NOTIFICATION_PORT_H_
#define KELVA_DARWIN_REGISTRY_NOTIFICATION_PORT_H_

#include <IOKit/IOKitLib.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <variant>

#include "darwin/cf/RunLoopSource.h"
#include "darwin/cf/WakeUp.h"
#include "darwin/registry/Entry.h"

namespace darwin {

class InterestNotification;
class MatchingNotification;

/// A registration has something to drain.
struct MatchMessage {
  std::weak_ptr<MatchingNotification> notification;
};

/// An entry has something to say.
struct InterestMessage {
  std::weak_ptr<InterestNotification> notification;
  std::shared_ptr<Entry> entry;
  std::uint32_t type;
};

using Message = std::variant<MatchMessage, InterestMessage>;

/// The messages that wait in a port until its run loop runs. Guarded by the registry's mutex.
class MessageQueue {
 public:
  void Push(Message message);
  std::optional<Message> Pop();
  std::size_t Size() const { return messages_.size(); }
  int Descriptor() const { return wakeUp_.Descriptor(); }

 private:
  std::deque<Message> messages_;
  WakeUp wakeUp_;  // readable while there are messages
};

}  // namespace darwin

/// The port itself: its queue, and the source that a run loop waits for.
struct IONotificationPort {
  IONotificationPort();
  ~IONotificationPort();

  std::shared_ptr<darwin::MessageQueue> queue;
  darwin::cf::RunLoopSource* source;  // one reference
};

#endif  // KELVA_DARWIN_REGISTRY_NOTIFICATION_PORT_H_
