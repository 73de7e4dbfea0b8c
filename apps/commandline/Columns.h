#ifndef KELVA_APPS_COMMANDLINE_COLUMNS_H_
#define KELVA_APPS_COMMANDLINE_COLUMNS_H_

#include <string>
#include <vector>

namespace apps {

/// Printable cells as lines whose columns stand below each other, two blanks between them and none at the end of a
/// line. Columns named in `right` (by number) are aligned to the right.
std::string Columns(const std::vector<std::vector<std::string>>& rows, const std::vector<std::size_t>& right = {});

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_COLUMNS_H_
