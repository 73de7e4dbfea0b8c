// Handles, iterators, and what can be read of an entry.

#include <IOKit/IOKitLib.h>

#include <cstring>
#include <utility>
#include <vector>

#include "darwin/cf/String.h"
#include "darwin/registry/Matching.h"
#include "darwin/registry/Notification.h"
#include "darwin/registry/State.h"

using darwin::Entry;
using darwin::EntryIterator;
using darwin::KernelObject;
using darwin::SharedState;

extern "C" {

const mach_port_t kIOMasterPortDefault = MACH_PORT_NULL;
const mach_port_t kIOMainPortDefault = MACH_PORT_NULL;
mach_port_t mach_task_self_ = 0x103;

kern_return_t IOObjectRelease(io_object_t object) {
  if (object == IO_OBJECT_NULL) return KERN_SUCCESS;
  std::shared_ptr<KernelObject> last;  // let go after the lock
  const std::lock_guard lock(SharedState().mutex);
  if (!SharedState().handles.Holds(object)) return KERN_INVALID_NAME;
  last = SharedState().handles.Release(object);
  return KERN_SUCCESS;
}

kern_return_t IOObjectRetain(io_object_t object) {
  if (object == IO_OBJECT_NULL) return KERN_SUCCESS;
  const std::lock_guard lock(SharedState().mutex);
  if (!SharedState().handles.Holds(object)) return KERN_INVALID_NAME;
  SharedState().handles.Retain(object);
  return KERN_SUCCESS;
}

io_object_t IOIteratorNext(io_iterator_t iterator) {
  const std::lock_guard lock(SharedState().mutex);
  auto* walk = dynamic_cast<EntryIterator*>(SharedState().handles.Find(iterator).get());
  const std::shared_ptr<Entry> entry = walk != nullptr ? walk->Next() : nullptr;
  return entry != nullptr ? SharedState().handles.Grant(entry) : IO_OBJECT_NULL;
}

kern_return_t IORegistryEntryGetParentEntry(io_registry_entry_t entry, const io_name_t plane,
                                            io_registry_entry_t* parent) {
  const std::lock_guard lock(SharedState().mutex);
  const std::shared_ptr<KernelObject> object = SharedState().handles.Find(entry);
  if (object == nullptr) return MACH_SEND_INVALID_DEST;
  const auto* child = dynamic_cast<const Entry*>(object.get());
  if (child == nullptr) return kIOReturnBadArgument;
  if (std::strcmp(plane, kIOServicePlane) != 0 || child->Parent() == nullptr) {
    *parent = IO_OBJECT_NULL;
    return kIOReturnNoDevice;
  }
  *parent = SharedState().handles.Grant(child->Parent());
  return kIOReturnSuccess;
}

kern_return_t IORegistryEntryGetChildIterator(io_registry_entry_t entry, const io_name_t plane,
                                              io_iterator_t* iterator) {
  const std::lock_guard lock(SharedState().mutex);
  const std::shared_ptr<KernelObject> object = SharedState().handles.Find(entry);
  if (object == nullptr) return MACH_SEND_INVALID_DEST;
  const auto* parent = dynamic_cast<const Entry*>(object.get());
  if (parent == nullptr) return kIOReturnBadArgument;
  std::vector<std::shared_ptr<Entry>> children;
  if (std::strcmp(plane, kIOServicePlane) == 0) children = parent->ActiveChildren();
  *iterator = SharedState().handles.Grant(std::make_shared<darwin::SnapshotIterator>(std::move(children)));
  return kIOReturnSuccess;
}

CFTypeRef IORegistryEntryCreateCFProperty(io_registry_entry_t entry, CFStringRef key, CFAllocatorRef, IOOptionBits) {
  const std::string* name = darwin::cf::TextOf(key);
  const std::lock_guard lock(SharedState().mutex);
  const std::shared_ptr<KernelObject> object = SharedState().handles.Find(entry);
  const auto* owner = dynamic_cast<const Entry*>(object.get());
  if (owner == nullptr || name == nullptr) return nullptr;
  // The options are ignored: only the entry's own properties are looked at.
  const darwin::PropertyValue* value = owner->Property(*name);
  return value != nullptr ? darwin::MakePropertyObject(*value) : nullptr;
}

}  // extern "C"
