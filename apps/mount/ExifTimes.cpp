// Keeps the dates that were read in pictures.
#include "apps/mount/ExifTimes.h"

#include <algorithm>
#include <functional>

#include "base/Ascii.h"

namespace apps {
namespace {

std::size_t KeyOf(const std::string& path, std::uint64_t size) {
  return std::hash<std::string>()(base::Lower(path) + '\\' + std::to_string(size));
}

template <typename Entries>
auto PlaceOf(Entries& entries, std::size_t key) {
  return std::lower_bound(entries.begin(), entries.end(), key,
                          [](const auto& entry, std::size_t wanted) { return entry.first < wanted; });
}

}  // namespace

std::optional<std::time_t> ExifTimes::Find(const std::string& path, std::uint64_t size) const {
  const std::size_t key = KeyOf(path, size);
  const auto place = PlaceOf(entries_, key);
  if (place == entries_.end() || place->first != key) return std::nullopt;
  return place->second;
}

void ExifTimes::Keep(const std::string& path, std::uint64_t size, std::time_t time) {
  // More pictures than this are looked into again.
  if (entries_.size() >= most_) entries_.clear();
  const std::size_t key = KeyOf(path, size);
  const auto place = PlaceOf(entries_, key);
  if (place != entries_.end() && place->first == key) {
    place->second = time;
  } else {
    entries_.insert(place, {key, time});
  }
}

void ExifTimes::Forget(const std::string& path, std::uint64_t size) {
  const std::size_t key = KeyOf(path, size);
  const auto place = PlaceOf(entries_, key);
  if (place != entries_.end() && place->first == key) entries_.erase(place);
}

}  // namespace apps
