// A notification port: the queue of messages, and the run-loop source that delivers them.

#include "darwin/registry/NotificationPort.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "base/FirstException.h"
#include "darwin/registry/State.h"

namespace darwin {

void MessageQueue::Push(std::unique_ptr<Message> message) {
  messages_.push_back(std::move(message));
  wakeUp_.Signal();
}

std::unique_ptr<Message> MessageQueue::Pop() {
  if (messages_.empty()) return nullptr;
  std::unique_ptr<Message> oldest = std::move(messages_.front());
  messages_.pop_front();
  return oldest;
}

std::size_t MessageQueue::Look() {
  wakeUp_.Clear();
  if (!messages_.empty()) wakeUp_.Signal();
  return messages_.size();
}

namespace {

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

  /// Delivers the messages that are waiting now; what a callback causes waits for the next round. A callback that
  /// throws keeps no other from its message.
  bool Perform() override {
    LookAgain();
    std::size_t waiting = Waiting();
    const bool handled = waiting != 0;
    base::FirstException exceptions;
    // A callback may destroy the port.
    for (; waiting != 0 && IsValid(); --waiting) {
      if (const std::unique_ptr<Message> message = Next()) exceptions.Try([&] { message->Deliver(); });
    }
    Waiting();
    exceptions.Rethrow();
    return handled;
  }

 private:
  /// The failure has no caller to return to, so it is printed to standard error, once.
  void LookAgain() {
    const std::string error = Registry::Shared().LookAgain() ? "" : Registry::Shared().LastSourceError();
    if (error != reported_ && !error.empty()) std::fprintf(stderr, "%s\n", error.c_str());
    reported_ = error;
  }

  std::size_t Waiting() const {
    const std::lock_guard lock(SharedState().mutex);
    return queue_->Look();
  }

  std::unique_ptr<Message> Next() {
    const std::lock_guard lock(SharedState().mutex);
    return queue_->Pop();
  }

  const std::shared_ptr<MessageQueue> queue_;
  std::string reported_;
};

}  // namespace

}  // namespace darwin

IONotificationPort::IONotificationPort()
    : queue(std::make_shared<darwin::MessageQueue>()), source(new darwin::PortSource(queue)) {
  const std::lock_guard lock(darwin::SharedState().mutex);
  ++darwin::SharedState().livePorts;
  darwin::SharedState().queues.push_back(queue);
}

IONotificationPort::~IONotificationPort() {
  source->Invalidate();
  const std::lock_guard lock(darwin::SharedState().mutex);
  --darwin::SharedState().livePorts;
}

namespace darwin {

IONotificationPort& FromPort(IONotificationPortRef port) {
  if (port == nullptr) {
    std::fputs("IOKit: a null notification port was given to a call that needs one.\n", stderr);
    std::abort();
  }
  return *port;
}

}  // namespace darwin

extern "C" {

IONotificationPortRef IONotificationPortCreate(mach_port_t) {
  try {
    return new IONotificationPort();
  } catch (const std::exception&) {
    return nullptr;  // no descriptor or no memory is left
  }
}

void IONotificationPortDestroy(IONotificationPortRef notify) {
  delete notify;
}

CFRunLoopSourceRef IONotificationPortGetRunLoopSource(IONotificationPortRef notify) {
  return darwin::cf::ToSourceRef(darwin::FromPort(notify).source.get());
}

}  // extern "C"
