// Finds files by the SHA-1 of their bytes, and reads a file again only when it may have changed.
#include "vcam/device/KeyIndex.h"

#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>

#include "vcam/device/Sha1.h"

namespace vcam {
namespace {

constexpr int kMaxDepth = 16;
// Longer than a tick of the clock that stamps files.
constexpr std::int64_t kSettleNs = 50'000'000;

std::int64_t HostNanoseconds() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

std::string HashFile(int file) {
  Sha1 digest;
  std::array<std::uint8_t, 64 * 1024> block;
  for (;;) {
    const ssize_t count = ::read(file, block.data(), block.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return {};
    if (count == 0) return digest.Hex();
    digest.Update(std::span(block).first(static_cast<std::size_t>(count)));
  }
}

}  // namespace

bool IsKey(std::string_view text) {
  return text.size() == kKeyLength &&
         std::all_of(text.begin(), text.end(), [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

std::string KeyIndex::KeyOf(const Storage& storage, const std::string& path, const FileStamp& stamp) {
  Known& known = known_[path];
  known.seen = true;
  if (!known.key.empty() && known.settled && known.stamp == stamp) return known.key;
  const std::int64_t start = HostNanoseconds();
  const OpenedFile opened = storage.OpenForReading(path);
  known.key = opened.file ? HashFile(opened.file.Get()) : std::string();
  known.stamp = opened.stamp;
  known.settled = start - std::max(opened.stamp.changedNs, opened.stamp.modifiedNs) > kSettleNs;
  return known.key;
}

void KeyIndex::Visit(const Storage& storage, const std::string& directory, int depth) {
  if (depth > kMaxDepth) return;
  for (const StorageEntry& entry : storage.List(directory)) {
    const std::string path = directory + "/" + entry.name;
    if (entry.isDirectory) {
      Visit(storage, path, depth + 1);
    } else {
      KeyOf(storage, path, entry.stamp);
    }
  }
}

void KeyIndex::DropUnseen() {
  std::erase_if(known_, [](const auto& item) { return !item.second.seen || item.second.key.empty(); });
}

void KeyIndex::Refresh(const Storage& storage) {
  for (auto& [path, known] : known_) known.seen = false;
  Visit(storage, "DCIM", 0);
  DropUnseen();
  byKey_.clear();
  for (const auto& [path, known] : known_) byKey_.emplace(known.key, path);
}

std::vector<KeyedFile> KeyIndex::Find(const std::string& key) const {
  std::vector<KeyedFile> files;
  const auto [first, last] = byKey_.equal_range(key);
  for (auto found = first; found != last; ++found) {
    files.push_back({found->second, known_.at(found->second).stamp.size});
  }
  return files;
}

}  // namespace vcam
