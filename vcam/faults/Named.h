#ifndef KELVA_VCAM_FAULTS_NAMED_H_
#define KELVA_VCAM_FAULTS_NAMED_H_

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

// A table of names: std::array of Named, one row for each value that a person may choose.

namespace vcam {

template <typename Value>
struct Named {
  Value value;
  std::string_view name;
};
// clang 14 does not deduce this for aggregates.
template <typename Value>
Named(Value, std::string_view) -> Named<Value>;

/// The name of a value; empty when the table has no row for it.
template <typename Table, typename Value>
constexpr std::string_view NameIn(const Table& table, Value value) {
  const auto row = std::find_if(table.begin(), table.end(), [&](const auto& one) { return one.value == value; });
  return row == table.end() ? std::string_view() : row->name;
}

/// The value with this name, if there is one.
template <typename Value, std::size_t Count>
constexpr std::optional<Value> FindIn(const std::array<Named<Value>, Count>& table, std::string_view name) {
  const auto row = std::find_if(table.begin(), table.end(), [&](const auto& one) { return one.name == name; });
  return row == table.end() ? std::nullopt : std::optional(row->value);
}

template <typename Value, std::size_t Count>
constexpr std::array<Value, Count> ValuesIn(const std::array<Named<Value>, Count>& table) {
  std::array<Value, Count> values{};
  std::transform(table.begin(), table.end(), values.begin(), [](const auto& row) { return row.value; });
  return values;
}

/// All names with `between` between them.
template <typename Table>
std::string NamesIn(const Table& table, std::string_view between = ", ") {
  std::string names;
  for (const auto& row : table) names.append(names.empty() ? "" : between).append(row.name);
  return names;
}

}  // namespace vcam

#endif  // KELVA_VCAM_FAULTS_NAMED_H_
