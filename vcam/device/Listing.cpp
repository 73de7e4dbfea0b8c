// Lays out the listing of one directory.
#include "vcam/device/Listing.h"

#include <algorithm>
#include <limits>

#include "src/wifi/CameraDirent.h"

namespace vcam {
namespace {

constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kHeaderLength = 8;
constexpr std::size_t kEntryLength = 12;

struct Line {
  int attributes;
  std::uint32_t size;
  std::string name;
};

Line LineOf(const StorageEntry& entry) {
  int attributes = entry.isDirectory ? kelva::kAttributeDirectory : kelva::kAttributeArchive;
  if (entry.isReadOnly) attributes |= kelva::kAttributeReadOnly;
  if (entry.name.front() == '.') attributes |= kelva::kAttributeHidden;
  const std::uint64_t size = entry.isDirectory ? 0 : entry.stamp.size;
  return {attributes,
          static_cast<std::uint32_t>(std::min<std::uint64_t>(size, std::numeric_limits<std::uint32_t>::max())),
          entry.name};
}

std::vector<Line> LinesOf(const std::vector<StorageEntry>& entries, bool isRoot) {
  std::vector<Line> lines{{kelva::kAttributeDirectory, 0, "."}, {kelva::kAttributeDirectory, 0, ".."}};
  if (isRoot) lines.push_back({kelva::kAttributeVolumeLabel, 0, kVolumeLabel});
  for (const StorageEntry& entry : entries) lines.push_back(LineOf(entry));
  return lines;
}

}  // namespace

DataSet BuildListing(const std::vector<StorageEntry>& entries, bool isRoot) {
  const std::vector<Line> lines = LinesOf(entries, isRoot);
  DataSet listing;
  base::Bytes table;
  base::Bytes names;
  base::Append(table, kVersion);
  listing.marks.counts.push_back(table.size());
  base::Append(table, static_cast<std::uint32_t>(lines.size()));
  for (const Line& line : lines) {
    const std::size_t name = kHeaderLength + kEntryLength * lines.size() + names.size();
    base::Append(table, static_cast<std::uint32_t>(line.attributes), line.size);
    listing.marks.offsets.push_back(table.size());
    base::Append(table, static_cast<std::uint32_t>(name));
    base::AppendString(names, line.name);
    listing.marks.names.push_back({name, line.name.size() + 1});
  }
  listing.AddBytes(std::move(table));
  listing.AddBytes(std::move(names));
  return listing;
}

}  // namespace vcam
