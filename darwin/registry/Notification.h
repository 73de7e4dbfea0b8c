#ifndef KELVA_DARWIN_REGISTRY_NOTIFICATION_H_
#define KELVA_DARWIN_REGISTRY_NOTIFICATION_H_

#include <IOKit/IOKitLib.h>

#include <memory>
#include <utility>
#include <vector>

#include "darwin/registry/Entry.h"
#include "darwin/registry/KernelObject.h"
#include "darwin/registry/Matching.h"
#include "darwin/registry/NotificationPort.h"

namespace darwin {

/// What IOIteratorNext walks. Guarded by the registry's mutex.
class EntryIterator : public KernelObject {
 public:
  /// The next entry, or null at the end. One that was terminated meanwhile is still handed out.
  virtual std::shared_ptr<Entry> Next() = 0;
};

/// The services that matched when they were looked for, oldest first.
class SnapshotIterator final : public EntryIterator {
 public:
  explicit SnapshotIterator(std::vector<std::shared_ptr<Entry>> entries) : entries_(std::move(entries)) {}
  std::shared_ptr<Entry> Next() override;

 private:
  std::vector<std::shared_ptr<Entry>> entries_;
  std::size_t next_ = 0;
};

/// A registration for services that match from now on, and the iterator that hands them out, newest first. A Next that
/// finds nothing arms it; the next match is then announced once and disarms it.
class MatchingNotification final : public EntryIterator {
 public:
  MatchingNotification(Matching matching, std::weak_ptr<MessageQueue> queue, IOServiceMatchingCallback callback,
                       void* context);

  std::shared_ptr<Entry> Next() override;
  /// A service has been registered; `self` is this object.
  void OnRegistered(const std::shared_ptr<Entry>& entry, const std::shared_ptr<MatchingNotification>& self);

  io_iterator_t handle = 0;  ///< the registration's number, which the callback receives
  const IOServiceMatchingCallback callback;
  void* const context;

 private:
  const Matching matching_;
  const std::weak_ptr<MessageQueue> queue_;
  std::vector<std::shared_ptr<Entry>> pending_;
  bool armed_ = false;
};

/// A registration for one entry's messages; it needs no arming.
class InterestNotification final : public KernelObject {
 public:
  InterestNotification(std::weak_ptr<MessageQueue> queue, IOServiceInterestCallback handler, void* refCon)
      : callback(handler), context(refCon), queue_(std::move(queue)) {}

  /// A message for the entry; `self` is this object.
  void OnMessage(const std::shared_ptr<Entry>& entry, std::uint32_t type,
                 const std::shared_ptr<InterestNotification>& self) const;

  const IOServiceInterestCallback callback;
  void* const context;

 private:
  const std::weak_ptr<MessageQueue> queue_;
};

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_NOTIFICATION_H_
