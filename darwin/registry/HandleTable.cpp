// The numbers that a program holds in place of kernel objects, with their reference counts.

#include "darwin/registry/HandleTable.h"

#include <utility>

namespace darwin {
namespace {

// The kernel's names end in these bits.
constexpr HandleTable::Handle kStep = 0x100;

}  // namespace

HandleTable::Handle HandleTable::Grant(const std::shared_ptr<KernelObject>& object) {
  if (const auto known = numbers_.find(object.get()); known != numbers_.end()) {
    ++slots_.at(known->second).references;
    return known->second;
  }
  do {
    next_ += kStep;
  } while (next_ == 0 || slots_.contains(next_));
  slots_.emplace(next_, Slot{object, 1});
  numbers_.emplace(object.get(), next_);
  return next_;
}

std::shared_ptr<KernelObject> HandleTable::Find(Handle handle) const {
  const auto slot = slots_.find(handle);
  return slot == slots_.end() ? nullptr : slot->second.object;
}

void HandleTable::Retain(Handle handle) {
  ++slots_.at(handle).references;
}

std::shared_ptr<KernelObject> HandleTable::Release(Handle handle) {
  const auto slot = slots_.find(handle);
  if (slot == slots_.end() || --slot->second.references != 0) return nullptr;
  std::shared_ptr<KernelObject> object = std::move(slot->second.object);
  numbers_.erase(object.get());
  slots_.erase(slot);
  return object;
}

std::shared_ptr<KernelObject> HandleTable::Kill(const KernelObject* object) {
  const auto number = numbers_.find(object);
  if (number == numbers_.end()) return nullptr;
  std::shared_ptr<KernelObject> held = std::exchange(slots_.at(number->second).object, nullptr);
  numbers_.erase(number);
  return held;
}

std::size_t HandleTable::References() const {
  std::size_t references = 0;
  for (const auto& [handle, slot] : slots_) references += slot.references;
  return references;
}

}  // namespace darwin
