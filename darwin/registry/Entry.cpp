// An entry of the registry: its classes, properties and parents.

#include "darwin/registry/Entry.h"

#include <algorithm>

namespace darwin {

bool Entry::IsOfClass(std::string_view className) const {
  const auto& names = description_.classNames;
  return std::find(names.begin(), names.end(), className) != names.end();
}

const PropertyValue* Entry::Property(const std::string& key) const {
  const auto found = description_.properties.find(key);
  return found == description_.properties.end() ? nullptr : &found->second;
}

std::vector<std::shared_ptr<Entry>> Entry::ActiveChildren() const {
  std::vector<std::shared_ptr<Entry>> found;
  for (const std::weak_ptr<Entry>& child : children) {
    std::shared_ptr<Entry> entry = child.lock();
    if (entry != nullptr && entry->active) found.push_back(std::move(entry));
  }
  return found;
}

}  // namespace darwin
