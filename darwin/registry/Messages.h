#ifndef KELVA_DARWIN_REGISTRY_MESSAGES_H_
#define KELVA_DARWIN_REGISTRY_MESSAGES_H_

#include <cstdint>
#include <memory>
#include <utility>

#include "darwin/registry/Notification.h"
#include "darwin/registry/NotificationPort.h"

namespace darwin {

/// Tells a registration's callback that its iterator has services to hand out.
class MatchMessage final : public Message {
 public:
  explicit MatchMessage(std::weak_ptr<MatchingNotification> notification) : notification_(std::move(notification)) {}
  /// Calls nothing when the registration was released while the message waited.
  void Deliver() override;

 private:
  const std::weak_ptr<MatchingNotification> notification_;
};

/// A message from an entry to one registration of interest.
class InterestMessage final : public Message {
 public:
  InterestMessage(std::weak_ptr<InterestNotification> notification, std::shared_ptr<Entry> entry, std::uint32_t type)
      : notification_(std::move(notification)), entry_(std::move(entry)), type_(type) {}
  /// The service's handle is valid during the call only.
  void Deliver() override;

 private:
  const std::weak_ptr<InterestNotification> notification_;
  const std::shared_ptr<Entry> entry_;
  const std::uint32_t type_;
};

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_MESSAGES_H_
