// Remembers which cameras honour the offsets of read commands, and finds the bytes that prove it.

#include "OffsetOrder.h"

#include <algorithm>
#include <boost/weak_ptr.hpp>
#include <mutex>
#include <vector>

namespace kelva {
namespace {

/// The cameras of this process of which something is known. Programs have a thread for each camera, hence the lock.
class OrderTable {
 public:
  OffsetOrder Find(const boost::shared_ptr<Camera>& camera) {
    const std::lock_guard lock(mutex_);
    const auto found =
        std::find_if(entries_.begin(), entries_.end(), [&](const Entry& each) { return each.Is(camera); });
    return found == entries_.end() ? OffsetOrder::kUnknown : found->order;
  }

  void Set(const boost::shared_ptr<Camera>& camera, OffsetOrder order) {
    const std::lock_guard lock(mutex_);
    std::erase_if(entries_, [&](const Entry& each) { return each.camera.expired() || each.Is(camera); });
    entries_.push_back({camera, order});
  }

 private:
  struct Entry {
    // Compares the owner and not the address, which a later camera may have again.
    bool Is(const boost::shared_ptr<Camera>& other) const {
      return !camera.owner_before(other) && !other.owner_before(camera);
    }

    boost::weak_ptr<Camera> camera;
    OffsetOrder order;
  };

  std::mutex mutex_;
  std::vector<Entry> entries_;
};

OrderTable& Orders() {
  static OrderTable table;
  return table;
}

}  // namespace

OffsetOrder KnownOrder(const boost::shared_ptr<Camera>& camera) {
  return Orders().Find(camera);
}

void RememberOrder(const boost::shared_ptr<Camera>& camera, OffsetOrder order) {
  Orders().Set(camera, order);
}

std::optional<std::size_t> ProofOffset(std::span<const char> firstChunk) {
  const auto differ = [firstChunk](std::size_t one, std::size_t other) {
    const char* const first = firstChunk.data() + one;
    return !std::equal(first, first + kProofSize, firstChunk.data() + other);
  };
  // The farthest place first: the longer the jump, the less a camera's own buffer hides.
  for (std::size_t place = firstChunk.size() / kProofSize; place-- > 2;) {
    const std::size_t offset = place * kProofSize;
    const std::size_t behind = offset + kProofSize;
    if (behind + kProofSize > firstChunk.size()) continue;
    if (differ(offset, kProofSize) && differ(offset, 0) && differ(behind, 0)) return offset;
  }
  return std::nullopt;
}

}  // namespace kelva
