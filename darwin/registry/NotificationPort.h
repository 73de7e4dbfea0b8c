#ifndef KELVA_DARWIN_REGISTRY_NOTIFICATION_PORT_H_
#define KELVA_DARWIN_REGISTRY_NOTIFICATION_PORT_H_

#include <IOKit/IOKitLib.h>

#include <cstddef>
#include <deque>
#include <memory>

#include "base/WakeUp.h"
#include "darwin/cf/RunLoopSource.h"

namespace darwin {

/// One message that waits in a port.
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
  /// The messages that wait. After this call the descriptor is readable only while there are any.
  std::size_t Look();
  /// Wakes the run loop without a message, because what the loop has to wait for has changed.
  void Nudge() { wakeUp_.Signal(); }
  int Descriptor() const { return wakeUp_.Descriptor(); }

 private:
  std::deque<std::unique_ptr<Message>> messages_;
  base::WakeUp wakeUp_;
};

}  // namespace darwin

/// The port itself: its queue, and the source that a run loop waits for.
struct IONotificationPort {
  IONotificationPort();
  ~IONotificationPort();

  struct GiveBack {
    void operator()(darwin::cf::RunLoopSource* held) const { held->Release(); }
  };

  std::shared_ptr<darwin::MessageQueue> queue;
  std::unique_ptr<darwin::cf::RunLoopSource, GiveBack> source;
};

namespace darwin {

/// The port behind a reference; stops the process on null, as the framework does.
IONotificationPort& FromPort(IONotificationPortRef port);

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_NOTIFICATION_PORT_H_
