#include "DirectoryListing.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

#include "LittleEndian.h"

namespace kelva {
namespace {

constexpr std::size_t kListingHeader = 8;
constexpr std::size_t kEntrySize = 12;

// Entries may name the same bytes, so a small answer could claim names without end. What is read for names together, their
// NULs included, is bounded by this many times the answer's size.
constexpr std::size_t kNameBudgetFactor = 16;

/// The NUL-terminated text at an offset from the start of the answer; nothing when it is not wholly inside. Every byte
/// that is looked at is taken from the budget, and what is beyond the budget is not looked at.
std::optional<std::string> NameAt(std::span<const char> answer, std::int32_t offset, std::size_t& budget) {
  if (offset < 0 || static_cast<std::size_t>(offset) >= answer.size()) return std::nullopt;
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

}  // namespace

std::vector<CameraDirent> DecodeListing(std::span<const char> answer) {
  if (answer.size() < kListingHeader) return {};
  const std::int32_t count = LoadI32(answer.data() + 4);
  std::size_t budget = answer.size() * kNameBudgetFactor;
  std::vector<CameraDirent> entries;
  std::span<const char> table = answer.subspan(kListingHeader);
  for (std::int32_t i = 0; i < count && table.size() >= kEntrySize; ++i, table = table.subspan(kEntrySize)) {
    std::optional<std::string> name = NameAt(answer, LoadI32(table.data() + 8), budget);
    if (name) entries.push_back({std::move(*name), LoadI32(table.data() + 4), LoadI32(table.data())});
  }
  return entries;
}

}  // namespace kelva
