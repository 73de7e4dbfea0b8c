#ifndef KELVA_DARWIN_REGISTRY_NOTIFICATION_PORT_H_
#define KELVA_DARWIN_REGISTRY_NOTIFICATION_PORT_H_

#include <IOKit/IOKitLib.h>

#include <cstddef>
#include <deque>
#include <memory>

#include "darwin/cf/RunLoopSource.h"
#include "darwin/cf/WakeUp.h"

namespace darwin {

/// What waits in a port.
class Message {
 public:
  virtual ~Message() = default;
  /// Calls the callback, on the run loop's thread and outside of the registry's lock.
  virtual void Deliver() = 0;
};

/// The messages that wait in a port until its run loop runs. Guarded by the registry's mutex.
class MessageQueue {
 public:
  void Push(std::unique_ptr<Message> message);
  /// The oldest message, or null.
  std::unique_ptr<Message> Pop();
  /// The messages that wait. Having looked, the descriptor is readable only while there are some.
  std::size_t Look();
  /// Has the run loop look again, although there may be no message: what it waits for has changed.
  void Nudge() { wakeUp_.Signal(); }
  int Descriptor() const { return wakeUp_.Descriptor(); }

 private:
  std::deque<std::unique_ptr<Message>> messages_;
  WakeUp wakeUp_;
};

}  // namespace darwin

/// The port itself: its queue, and the source that a run loop waits for.
struct IONotificationPort {
  IONotificationPort();
  ~IONotificationPort();

  std::shared_ptr<darwin::MessageQueue> queue;
  darwin::cf::RunLoopSource* source;  // one reference
};

namespace darwin {

/// The port behind a reference; stops the process on null, as the framework does.
IONotificationPort& FromPort(IONotificationPortRef port);

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_NOTIFICATION_PORT_H_
