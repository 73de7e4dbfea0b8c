#ifndef KELVA_DARWIN_REGISTRY_HANDLE_TABLE_H_
#define KELVA_DARWIN_REGISTRY_HANDLE_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "darwin/registry/KernelObject.h"

namespace darwin {

/// The process's handles. One object has one number while a reference to it is held, and each reference is counted. Not
/// locked: the registry's mutex guards it.
class HandleTable {
 public:
  using Handle = std::uint32_t;

  /// Gives one more reference to the object's handle.
  Handle Grant(const std::shared_ptr<KernelObject>& object);
  /// The object, when the handle is alive.
  std::shared_ptr<KernelObject> Find(Handle handle) const;
  /// True for a handle that the process holds, alive or dead.
  bool Holds(Handle handle) const { return slots_.contains(handle); }
  /// One more reference to a handle that the process holds.
  void Retain(Handle handle);
  /// Gives back one reference. Returns the object when that was the last reference, so that the caller can destroy it
  /// outside of the lock.
  std::shared_ptr<KernelObject> Release(Handle handle);
  /// Makes the object's handle, if it has one, a dead one, which its holder must still release. Returns the object, as
  /// Release does.
  std::shared_ptr<KernelObject> Kill(const KernelObject* object);

  std::size_t Handles() const { return slots_.size(); }
  std::size_t References() const;

 private:
  struct Slot {
    std::shared_ptr<KernelObject> object;  // null: dead
    std::size_t references;
  };

  std::unordered_map<Handle, Slot> slots_;
  std::unordered_map<const KernelObject*, Handle> numbers_;
  Handle next_ = 0x1003;
};

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_HANDLE_TABLE_H_
