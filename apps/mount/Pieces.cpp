// Keeps the bytes that were read last.
#include "apps/mount/Pieces.h"

namespace apps {
namespace {

// Longer than a reader needs for what was read ahead, and short enough for a file that another program writes anew.
constexpr std::chrono::seconds kAge{2};

}  // namespace

Pieces::Piece Pieces::Find(std::uint64_t file, std::uint64_t index, Clock::time_point now) {
  const auto found = places_.find({file, index});
  if (found == places_.end()) return nullptr;
  const auto place = found->second;
  if (now - place->came > kAge) {
    kept_.erase(place);
    places_.erase(found);
    return nullptr;
  }
  kept_.splice(kept_.begin(), kept_, place);
  return place->piece;
}

void Pieces::Keep(std::uint64_t file, std::uint64_t index, Piece piece, Clock::time_point now) {
  const Key key{file, index};
  if (const auto found = places_.find(key); found != places_.end()) {
    kept_.erase(found->second);
    places_.erase(found);
  }
  if (kept_.size() == most_) {
    places_.erase(kept_.back().key);
    kept_.pop_back();
  }
  kept_.push_front({key, std::move(piece), now});
  places_[key] = kept_.begin();
}

void Pieces::Drop(std::uint64_t file) {
  auto at = places_.lower_bound({file, 0});
  while (at != places_.end() && at->first.first == file) {
    kept_.erase(at->second);
    at = places_.erase(at);
  }
}

}  // namespace apps
