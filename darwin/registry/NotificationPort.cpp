#include "darwin/registry/NotificationPort.h"

#include "darwin/registry/Notification.h"
#include "darwin/registry/State.h"

namespace darwin {

void MessageQueue::Push(Message message) {
  messages_.push_back(std::move(message));
  wakeUp_.Signal();
}

std::optional<Message> MessageQueue::Pop() {
  if (messages_.empty()) {
    return std::nullopt;
  }
  Message message = std::move(messages_.front());
  messages_.pop_front();
  if (messages_.empty()) {
    wakeUp_.Clear();
  }
  return message;
}

namespace {

/// Calls a registration's callback, unless the registration was released while the message waited.
void Deliver(const MatchMessage& message) {
  const std::shared_ptr<MatchingNotification> notification = message.notification.lock();
  if (notification == nullptr) {
    return;
  }
  {
    const std::lock_guard lock(SharedState().mutex);
    if (SharedState().handles.Find(notification->handle) != notification) {
      return;
    }
  }
  notification->callback(notification->context, notification->handle);
}

/// The service's handle is valid during the call only.
void Deliver(const InterestMessage& message) {
  const std::shared_ptr<InterestNotification> notification = message.notification.lock();
  if (notification == nullptr) {
    return;
  }
  io_service_t service = 0;
  {
    const std::lock_guard lock(SharedState().mutex);
    service = SharedState().handles.Grant(message.entry);
  }
  notification->callback(notification->context, service, message.type, nullptr);
  IOObjectRelease(service);
}

class PortSource final : public cf::RunLoopSource {
 public:
  explicit PortSource(std::shared_ptr<MessageQueue> queue) : queue_(std::move(queue)) {}

  void AddDescriptors(std::vector<int>& descriptors) const override {
    descriptors.push_back(queue_->Descriptor());
    if (const int descriptor = Registry::Shared().SourceDescriptor(); descriptor >= 0) {
      descriptors.push_back(descriptor);
    }
  }

  int TimeoutMs() const override { return Registry::Shared().SourceTimeoutMs(); }

  /// Delivers the messages that are waiting now; what a callback causes waits for the next round.
  bool Perform() override {
    Registry::Shared().LookAgain();
    std::size_t waiting = Waiting();
    const bool handled = waiting != 0;
    for (; waiting != 0; --waiting) {
      if (const std::optional<Message> message = Next()) {
        std::visit([](const auto& kind) { Deliver(kind); }, *message);
      }
    }
    return handled;
  }

 private:
  std::size_t Waiting() const {
    const std::lock_guard lock(SharedState().mutex);
    return queue_->Size();
  }

  std::optional<Message> Next() {
    const std::lock_guard lock(SharedState().mutex);
    return queue_->Pop();
  }

  const std::shared_ptr<MessageQueue> queue_;
};

}  // namespace

}  // namespace darwin

IONotificationPort::IONotificationPort()
    : queue(std::make_shared<darwin::MessageQueue>()), source(new darwin::PortSource(queue)) {
  const std::lock_guard lock(darwin::SharedState().mutex);
  ++darwin::SharedState().livePorts;
}

IONotificationPort::~IONotificationPort() {
  source->Release();
  const std::lock_guard lock(darwin::SharedState().mutex);
  --darwin::SharedState().livePorts;
}

extern "C" {

IONotificationPortRef IONotificationPortCreate(mach_port_t) {
  return new IONotificationPort();
}

void IONotificationPortDestroy(IONotificationPortRef notify) {
  delete notify;
}

CFRunLoopSourceRef IONotificationPortGetRunLoopSource(IONotificationPortRef notify) {
  return darwin::cf::ToSourceRef(notify->source);
}

}  // extern "C"
