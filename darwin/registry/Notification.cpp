// Registrations for matches and messages: when they are armed and what they send.

#include "darwin/registry/Notification.h"

#include "darwin/registry/Messages.h"

namespace darwin {
namespace {

/// The kernel drops further matches of an iterator that nobody drains.
constexpr std::size_t kMostPending = 1024;

}  // namespace

std::shared_ptr<Entry> SnapshotIterator::Next() {
  return next_ == entries_.size() ? nullptr : std::exchange(entries_[next_++], nullptr);
}

MatchingNotification::MatchingNotification(Matching matching, std::weak_ptr<MessageQueue> queue,
                                           IOServiceMatchingCallback handler, void* refCon)
    : callback(handler), context(refCon), matching_(std::move(matching)), queue_(std::move(queue)) {}

std::shared_ptr<Entry> MatchingNotification::Next() {
  if (pending_.empty()) {
    armed_ = true;
    return nullptr;
  }
  std::shared_ptr<Entry> newest = std::move(pending_.back());
  pending_.pop_back();
  return newest;
}

void MatchingNotification::OnRegistered(const std::shared_ptr<Entry>& entry,
                                        const std::shared_ptr<MatchingNotification>& self) {
  if (!matching_.Accepts(*entry) || pending_.size() == kMostPending) return;
  pending_.push_back(entry);
  if (armed_) {
    armed_ = false;
    if (const std::shared_ptr<MessageQueue> queue = queue_.lock()) queue->Push(std::make_unique<MatchMessage>(self));
  }
}

void InterestNotification::OnMessage(const std::shared_ptr<Entry>& entry, std::uint32_t type,
                                     const std::shared_ptr<InterestNotification>& self) const {
  if (const std::shared_ptr<MessageQueue> queue = queue_.lock()) {
    queue->Push(std::make_unique<InterestMessage>(self, entry, type));
  }
}

}  // namespace darwin
