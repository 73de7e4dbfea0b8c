// Lines up cells in columns for people: list, ls and the like.
#include "apps/commandline/Columns.h"

#include <algorithm>

#include "apps/commandline/Printable.h"

namespace apps {

void ColumnLayout::Measure(const std::vector<std::string>& row) {
  widths_.resize(std::max(widths_.size(), row.size()));
  for (std::size_t i = 0; i < row.size(); ++i) widths_[i] = std::max(widths_[i], Width(row[i]));
}

std::string ColumnLayout::Line(const std::vector<std::string>& row) const {
  std::string line;
  for (std::size_t i = 0; i < row.size(); ++i) {
    const std::string fill(widths_[i] - Width(row[i]), ' ');
    const bool toTheRight = std::find(right_.begin(), right_.end(), i) != right_.end();
    line += (i == 0 ? "" : "  ") + (toTheRight ? fill + row[i] : row[i] + fill);
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line + "\n";
}

std::string Columns(const std::vector<std::vector<std::string>>& rows, const std::vector<std::size_t>& right) {
  ColumnLayout layout(right);
  for (const auto& row : rows) layout.Measure(row);
  std::string text;
  for (const auto& row : rows) text += layout.Line(row);
  return text;
}

}  // namespace apps
