#ifndef KELVA_DARWIN_REGISTRY_ENTRY_H_
#define KELVA_DARWIN_REGISTRY_ENTRY_H_

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "darwin/registry/KernelObject.h"
#include "darwin/registry/Registry.h"

namespace darwin {

class Connection;
class InterestNotification;

/// One entry of the registry. All but the description is guarded by the registry's mutex.
class Entry final : public KernelObject {
 public:
  Entry(EntryId id, std::shared_ptr<Entry> parent, EntryDescription description)
      : id_(id), parent_(std::move(parent)), description_(std::move(description)) {}

  EntryId Id() const { return id_; }
  /// Null for the root.
  const std::shared_ptr<Entry>& Parent() const { return parent_; }
  const EntryDescription& Description() const { return description_; }
  bool IsOfClass(std::string_view className) const;
  /// The entry's own property; null when it has none of that name.
  const PropertyValue* Property(const std::string& key) const;
  /// Those that are not terminated, oldest first.
  std::vector<std::shared_ptr<Entry>> ActiveChildren() const;

  bool active = true;       ///< until it is terminated
  bool registered = false;  ///< matching finds it while it is active
  std::vector<std::weak_ptr<Entry>> children;
  std::vector<std::weak_ptr<Connection>> connections;
  std::vector<std::weak_ptr<InterestNotification>> interests;

 private:
  const EntryId id_;
  const std::shared_ptr<Entry> parent_;
  const EntryDescription description_;
};

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_ENTRY_H_
