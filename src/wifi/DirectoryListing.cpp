// Decodes the answer of a directory listing, whatever a camera claims in it.

#include "DirectoryListing.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "LittleEndian.h"

namespace kelva {
namespace {

constexpr std::size_t kListingHeader = 8;
constexpr std::size_t kEntrySize = 12;

// Several entries may name the same bytes, so a small answer could claim names without end. All names together, with
// their NULs, may take this many times the answer's size.
constexpr std::size_t kNameBudgetFactor = 16;

/// The text at an offset from the start of the answer, up to its NUL or the answer's end. Nothing when the offset is
/// outside or the budget ends first. Every byte looked at is taken from the budget.
std::optional<std::string> NameAt(std::span<const char> answer, std::int32_t offset, std::size_t& budget) {
  if (offset < 0 || static_cast<std::size_t>(offset) >= answer.size()) return std::nullopt;
  const std::span<const char> rest = answer.subspan(static_cast<std::size_t>(offset));
  const std::span<const char> affordable = rest.first(std::min(rest.size(), budget));
  const auto nul = std::find(affordable.begin(), affordable.end(), '\0');
  const bool ended = nul != affordable.end();
  std::string name(affordable.begin(), nul);
  budget -= name.size() + (ended ? 1 : 0);
  if (!ended && affordable.size() < rest.size()) return std::nullopt;
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
