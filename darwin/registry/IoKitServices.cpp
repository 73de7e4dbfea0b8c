// Looking for services, now and later.

#include <IOKit/IOKitLib.h>

#include <cstring>
#include <optional>

#include "darwin/cf/String.h"
#include "darwin/registry/Matching.h"
#include "darwin/registry/Notification.h"
#include "darwin/registry/State.h"

namespace {

using darwin::Entry;
using darwin::InterestNotification;
using darwin::KernelObject;
using darwin::Matching;
using darwin::MatchingNotification;
using darwin::SharedState;

/// Copies what a matching dictionary asks for, and consumes the caller's reference to it, as every search does.
std::optional<Matching> Consume(CFDictionaryRef dictionary) {
  std::optional<Matching> matching = Matching::FromDictionary(dictionary);
  CFRelease(dictionary);
  return matching;
}

std::vector<std::shared_ptr<Entry>> MatchingServices(const Matching& matching) {
  std::vector<std::shared_ptr<Entry>> found;
  for (const std::shared_ptr<Entry>& service : SharedState().services) {
    if (matching.Accepts(*service)) found.push_back(service);
  }
  return found;
}

}  // namespace

extern "C" {

CFMutableDictionaryRef IOServiceMatching(const char* name) {
  const CFMutableDictionaryRef matching = CFDictionaryCreateMutable(
      kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
  const CFStringRef className = CFStringCreateWithCString(kCFAllocatorDefault, name, kCFStringEncodingMacRoman);
  CFDictionarySetValue(matching, CFSTR(kIOProviderClassKey), className);
  CFRelease(className);
  return matching;
}

kern_return_t IOServiceGetMatchingServices(mach_port_t, CFDictionaryRef matching, io_iterator_t* existing) {
  if (matching == nullptr) return kIOReturnBadArgument;
  const std::optional<Matching> wanted = Consume(matching);
  if (!wanted) return kIOReturnUnsupported;
  if (!darwin::Registry::Shared().LookAgain()) return kIOReturnError;
  const std::lock_guard lock(SharedState().mutex);
  std::vector<std::shared_ptr<Entry>> found = MatchingServices(*wanted);
  *existing = found.empty() ? IO_OBJECT_NULL
                            : SharedState().handles.Grant(std::make_shared<darwin::SnapshotIterator>(std::move(found)));
  return kIOReturnSuccess;
}

kern_return_t IOServiceAddMatchingNotification(IONotificationPortRef notifyPort, const io_name_t notificationType,
                                               CFDictionaryRef matching, IOServiceMatchingCallback callback,
                                               void* refCon, io_iterator_t* notification) {
  const std::weak_ptr<darwin::MessageQueue> queue = darwin::FromPort(notifyPort).queue;
  if (matching == nullptr) return kIOReturnBadArgument;
  std::optional<Matching> wanted = Consume(matching);
  if (!wanted || std::strcmp(notificationType, kIOFirstMatchNotification) != 0) return kIOReturnUnsupported;
  if (!darwin::Registry::Shared().LookAgain()) return kIOReturnError;
  const std::lock_guard lock(SharedState().mutex);
  const std::vector<std::shared_ptr<Entry>> present = MatchingServices(*wanted);
  const auto created = std::make_shared<MatchingNotification>(std::move(*wanted), queue, callback, refCon);
  for (const std::shared_ptr<Entry>& service : present) created->OnRegistered(service, created);
  created->handle = SharedState().handles.Grant(created);
  darwin::Prune(SharedState().matchings);
  SharedState().matchings.push_back(created);
  *notification = created->handle;
  return kIOReturnSuccess;
}

kern_return_t IOServiceAddInterestNotification(IONotificationPortRef notifyPort, io_service_t service,
                                               const io_name_t interestType, IOServiceInterestCallback callback,
                                               void* refCon, io_object_t* notification) {
  const std::weak_ptr<darwin::MessageQueue> queue = darwin::FromPort(notifyPort).queue;
  const std::lock_guard lock(SharedState().mutex);
  const std::shared_ptr<KernelObject> object = SharedState().handles.Find(service);
  if (object == nullptr) return MACH_SEND_INVALID_DEST;
  const auto entry = std::dynamic_pointer_cast<Entry>(object);
  if (entry == nullptr) return kIOReturnBadArgument;
  if (std::strcmp(interestType, kIOGeneralInterest) != 0 || !entry->active) return kIOReturnUnsupported;
  const auto created = std::make_shared<InterestNotification>(queue, callback, refCon);
  darwin::Prune(entry->interests);
  entry->interests.push_back(created);
  *notification = SharedState().handles.Grant(created);
  return kIOReturnSuccess;
}

}  // extern "C"
