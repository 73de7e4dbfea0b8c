#ifndef KELVA_APPS_MOUNT_NODES_H_
#define KELVA_APPS_MOUNT_NODES_H_

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <unordered_map>

#include "apps/mount/ShownFolder.h"

namespace apps {

/// A file or folder that the kernel knows by a number.
struct Node {
  std::uint64_t parent = 0;
  std::string name;  ///< the camera's bytes
  std::uint64_t size = 0;
  std::time_t changed = 0;
  std::uint64_t lookups = 0;  ///< how often the kernel was told of it and has not forgotten it
  bool isFolder = false;
  bool isGone = false;  ///< known not to be on the camera, until it is told of again
};

/// The numbers by which the kernel knows files and folders. As small as the kernel's own memory of them. One thread at a time.
class Nodes {
 public:
  static constexpr std::uint64_t kRoot = 1;

  Nodes();

  /// The number of an entry of this folder, new when the kernel does not know the entry; counts as told. Takes over its size.
  std::uint64_t Tell(std::uint64_t parent, const ShownEntry& entry);
  /// Null for a number that the kernel does not know. Valid until the next Tell or Forget.
  Node* Find(std::uint64_t number);
  void Forget(std::uint64_t number, std::uint64_t count);
  /// The camera's path, "I:" for the root; empty when one of its folders is unknown.
  std::string PathOf(std::uint64_t number) const;
  std::size_t Count() const { return nodes_.size(); }

 private:
  std::unordered_map<std::uint64_t, Node> nodes_;
  std::unordered_multimap<std::size_t, std::uint64_t> byName_;  // by hash: a name is kept once
  std::uint64_t next_ = kRoot + 1;
};

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_NODES_H_
