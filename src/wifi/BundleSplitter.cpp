// Cuts a bundle into its files while its chunks arrive.

#include "BundleSplitter.h"

#include <algorithm>
#include <utility>

namespace kelva {

BundleSplitter::BundleSplitter(TableDecoder decoder) : decoder_(std::move(decoder)) {}

void BundleSplitter::Append(std::span<const char> bytes) {
  received_ += bytes.size();
  if (table_) {
    AppendToBodies(bytes);
    return;
  }
  head_.insert(head_.end(), bytes.begin(), bytes.end());
  table_ = decoder_(head_);
  if (table_) {
    // In the crash-log bundle the first body starts four bytes before the table's end, so the head is kept until here.
    const auto start = static_cast<std::size_t>(std::min<std::uint64_t>(table_->bodyStart, head_.size()));
    AppendToBodies(std::span<const char>(head_).subspan(start));
    std::vector<char>().swap(head_);  // frees the memory, which clear() would keep
  }
}

void BundleSplitter::AppendToBodies(std::span<const char> bytes) {
  for (SkipFullBodies(); !bytes.empty() && current_ < table_->entries.size(); SkipFullBodies()) {
    _Sha1obj& entry = table_->entries[current_];
    if (entry.data.empty()) entry.data.reserve(std::min<std::size_t>(entry.size, kLargestReservation));
    const std::size_t part = std::min(bytes.size(), entry.size - entry.data.size());
    entry.data.insert(entry.data.end(), bytes.data(), bytes.data() + part);
    bytes = bytes.subspan(part);
  }
}

void BundleSplitter::SkipFullBodies() {
  while (current_ < table_->entries.size() && table_->entries[current_].data.size() == table_->entries[current_].size) {
    ++current_;
  }
}

std::vector<_Sha1obj> BundleSplitter::TakeFiles() {
  if (!table_ || current_ != table_->entries.size()) return {};
  std::vector<_Sha1obj> files = std::move(table_->entries);
  std::erase_if(files, [](const _Sha1obj& file) { return file.size == 0; });
  return files;
}

}  // namespace kelva
