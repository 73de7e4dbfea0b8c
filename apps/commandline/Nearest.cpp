// Guesses the command that a mistyped word meant.
#include "apps/commandline/Nearest.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace apps {

std::size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

std::string_view NearestVerb(std::span<const Verb> table, std::string_view word) {
  constexpr std::size_t kLongestWord = 40;
  if (word.empty() || word.size() > kLongestWord) return {};
  std::string_view nearest;
  std::size_t least = std::min<std::size_t>(2, word.size() / 2) + 1;
  for (const Verb& verb : table) {
    const std::size_t distance = EditDistance(word, verb.name);
    if (distance >= least) continue;
    least = distance;
    nearest = verb.name;
  }
  return nearest;
}

}  // namespace apps
