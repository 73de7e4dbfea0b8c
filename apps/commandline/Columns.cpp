// Lines up cells in columns for people: list, ls and the like.
#include "apps/commandline/Columns.h"

#include <algorithm>

#include "apps/commandline/Printable.h"

namespace apps {
namespace {

std::vector<std::size_t> Widths(const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  }
  return widths;
}

}  // namespace

std::string Columns(const std::vector<std::vector<std::string>>& rows, const std::vector<std::size_t>& right) {
  const std::vector<std::size_t> widths = Widths(rows);
  std::string text;
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string fill(widths[i] - Width(row[i]), ' ');
      const bool toTheRight = std::find(right.begin(), right.end(), i) != right.end();
      line += (i == 0 ? "" : "  ") + (toTheRight ? fill + row[i] : row[i] + fill);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  return text;
}

}  // namespace apps
