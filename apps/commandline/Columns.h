#ifndef KELVA_APPS_COMMANDLINE_COLUMNS_H_
#define KELVA_APPS_COMMANDLINE_COLUMNS_H_

#include <string>
#include <utility>
#include <vector>

namespace apps {

/// Printable cells as lines whose columns stand below each other, two blanks between them and none at the end of a
/// line. Columns named in `right` (by number) are aligned to the right.
std::string Columns(const std::vector<std::vector<std::string>>& rows, const std::vector<std::size_t>& right = {});

/// The same for rows that are made twice, so that many of them take no memory: Measure each, then print the Line of each.
class ColumnLayout {
 public:
  explicit ColumnLayout(std::vector<std::size_t> right = {}) : right_(std::move(right)) {}

  void Measure(const std::vector<std::string>& row);
  std::string Line(const std::vector<std::string>& row) const;

 private:
  std::vector<std::size_t> right_;
  std::vector<std::size_t> widths_;
};

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_COLUMNS_H_
