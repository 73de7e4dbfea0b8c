// Directory listings, and the walk over a whole subtree.

#include <algorithm>
#include <cstring>
#include <optional>
#include <span>

#include "Camera.h"
#include "ChunkedRead.h"
#include "Command.h"
#include "LittleEndian.h"

using vsc::Block;
using vsc::Operation;

namespace {

constexpr std::size_t kListingHeader = 8;
constexpr std::size_t kEntrySize = 12;
constexpr int kVolumeLabel = 0x08;
constexpr int kDirectory = 0x10;

// Entries may name the same bytes, so a small answer could claim names without end. What is read for names together, their
// NULs included, is bounded by this many times the answer's size.
constexpr std::size_t kNameBudgetFactor = 16;

/// The NUL-terminated text at an offset from the start of the answer; nothing when it is not wholly inside. Every byte
/// that is looked at is taken from the budget, and what is beyond the budget is not looked at.
std::optional<std::string> NameAt(std::span<const char> answer, std::int32_t offset, std::size_t& budget) {
  if (offset < 0 || static_cast<std::size_t>(offset) >= answer.size()) {
    return std::nullopt;
  }
  std::span<const char> rest = answer.subspan(static_cast<std::size_t>(offset));
  rest = rest.first(std::min(rest.size(), budget));
  const void* end = std::memchr(rest.data(), '\0', rest.size());
  if (end == nullptr) {
    budget -= rest.size();
    return std::nullopt;
  }
  std::string name(rest.data(), static_cast<const char*>(end));
  budget -= name.size() + 1;
  return name;
}

std::vector<CameraDirent> DecodeListing(std::span<const char> answer) {
  if (answer.size() < kListingHeader) {
    return {};
  }
  const std::int32_t count = vsc::LoadI32(answer.data() + 4);
  std::size_t budget = answer.size() * kNameBudgetFactor;
  std::vector<CameraDirent> entries;
  std::span<const char> table = answer.subspan(kListingHeader);
  for (std::int32_t i = 0; i < count && table.size() >= kEntrySize; ++i, table = table.subspan(kEntrySize)) {
    std::optional<std::string> name = NameAt(answer, vsc::LoadI32(table.data() + 8), budget);
    if (name) {
      entries.push_back({std::move(*name), vsc::LoadI32(table.data() + 4), vsc::LoadI32(table.data())});
    }
  }
  return entries;
}

/// A directory whose entries are being visited.
struct Visit {
  std::string path;
  std::vector<CameraDirent> entries;
  std::size_t next = 0;
};

}  // namespace

std::vector<CameraDirent> Camera::ReadDir(const char* path) {
  ClearCancel(true);
  if (!vsc::SendText(*this, Block(Operation::kSelect, vsc::select::kDirectory), path, true)) {
    return {};
  }
  vsc::VectorSink sink;
  if (!vsc::ReadChunks(*this, chunkSize_, {vsc::read_chunk::kSelected, true, vsc::ReadProgress::None()}, sink)) {
    return {};
  }
  return DecodeListing(sink.Take());
}

void Camera::TraverseDir(const char* path, std::vector<std::pair<std::string, long long>>& files) {
  // Not recursive: how deep the tree goes is the camera's word.
  std::vector<Visit> visits;
  visits.push_back({path, ReadDir(path)});
  while (!visits.empty()) {
    Visit& visit = visits.back();
    if (visit.next == visit.entries.size()) {
      visits.pop_back();
      continue;
    }
    const CameraDirent& entry = visit.entries[visit.next++];
    std::string full = visit.path + "\\" + entry.name;
    if ((entry.attributes & kDirectory) != 0) {
      if (entry.name != "." && entry.name != "..") {
        std::vector<CameraDirent> below = ReadDir(full.c_str());
        visits.push_back({std::move(full), std::move(below)});
      }
    } else if ((entry.attributes & kVolumeLabel) == 0) {
      files.emplace_back(std::move(full), entry.size);
    }
  }
}
