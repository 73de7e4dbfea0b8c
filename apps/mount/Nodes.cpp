// Numbers the files and folders that the kernel knows.
#include "apps/mount/Nodes.h"

#include <functional>
#include <utility>

namespace apps {
namespace {

std::size_t KeyOf(std::uint64_t parent, const std::string& name) {
  constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;
  return std::hash<std::string>()(name) ^ static_cast<std::size_t>(parent * kSpread);
}

}  // namespace

Nodes::Nodes() {
  nodes_[kRoot] = {0, "I:", 0, 0, 1, true, false};
}

std::uint64_t Nodes::Tell(std::uint64_t parent, const ShownEntry& entry) {
  const std::size_t key = KeyOf(parent, entry.name);
  const auto [first, last] = byName_.equal_range(key);
  for (auto at = first; at != last; ++at) {
    Node& node = nodes_[at->second];
    if (node.parent != parent || node.name != entry.name || node.isFolder != entry.isFolder) continue;
    node.size = entry.size;
    node.changed = entry.changed;
    node.isGone = false;
    ++node.lookups;
    return at->second;
  }
  const std::uint64_t number = next_++;
  nodes_[number] = {parent, entry.name, entry.size, entry.changed, 1, entry.isFolder, false};
  byName_.emplace(key, number);
  return number;
}

Node* Nodes::Find(std::uint64_t number) {
  const auto found = nodes_.find(number);
  return found == nodes_.end() ? nullptr : &found->second;
}

void Nodes::Forget(std::uint64_t number, std::uint64_t count) {
  const auto found = nodes_.find(number);
  if (found == nodes_.end() || number == kRoot) return;
  Node& node = found->second;
  if (node.lookups > count) {
    node.lookups -= count;
    return;
  }
  const auto [first, last] = byName_.equal_range(KeyOf(node.parent, node.name));
  for (auto at = first; at != last; ++at) {
    if (at->second != number) continue;
    byName_.erase(at);
    break;
  }
  nodes_.erase(found);
}

std::string Nodes::PathOf(std::uint64_t number) const {
  std::string path;
  // A folder is made after the one that it is in, so the numbers fall on the way up.
  for (std::uint64_t at = number; at != 0;) {
    const auto found = nodes_.find(at);
    if (found == nodes_.end()) return "";
    path = path.empty() ? found->second.name : found->second.name + "\\" + path;
    at = found->second.parent;
  }
  return path;
}

}  // namespace apps
