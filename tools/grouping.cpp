#include "grouping.h"

#include <map>
#include <utility>

#include "failure.h"
#include "number_text.h"
#include "utf8.h"
#include "variable.h"

namespace tool {
namespace {

constexpr std::size_t kMostCategories = 150;

[[noreturn]] void failTooMany(const std::string& column) {
  throw Failure(column + ": it has more than " + std::to_string(kMostCategories) +
                " different values, too many for categories");
}

Grouping byRowNames(const Table& table) {
  Grouping grouping{table.rowNameTitle, table.rowNameColumn, {}, {}, 0};
  if (grouping.title.empty()) grouping.title = "row name";
  if (std::cmp_greater(table.rows(), kMostCategories)) {
    failTooMany(table.source + ", column " + inQuotes(grouping.title));
  }
  for (int r = 1; r <= table.rows(); ++r) {
    grouping.labels.push_back(table.rowName(r));
    grouping.rows.push_back({r});
  }
  return grouping;
}

}  // namespace

Grouping groupingOf(const Table& table, const std::string& wanted, const std::string& option) {
  const bool isRowName =
      table.rowNameColumn > 0 && !wanted.empty() &&
      (wanted == table.rowNameTitle || wanted == std::to_string(table.rowNameColumn));
  if (isRowName) return byRowNames(table);
  const std::size_t c = findColumn(table, wanted, option);
  const Column& column = table.columns[c];
  Grouping grouping{column.title(), column.number, {}, {}, 0};
  if (column.isSkipped) failTooMany(placeOf(table, column));
  const int at = static_cast<int>(c) + 1;
  std::map<double, std::vector<int>> groups;
  for (int r = 1; r <= table.rows(); ++r) {
    if (table.isMissing(c, r)) {
      ++grouping.missing;
    } else {
      groups[table.data->GetElem(at, r)].push_back(r);
      if (groups.size() > kMostCategories) failTooMany(placeOf(table, column));
    }
  }
  if (groups.empty()) throw Failure(placeOf(table, column) + ": it has no values");
  for (auto& [value, rows] : groups) {
    grouping.labels.push_back(
        column.kind == Column::numbers
            ? shortest(value + 0.0)  // no "-0"
            : std::string(table.data->GetElemNominal(at, rows.front()).view()));
    grouping.rows.push_back(std::move(rows));
  }
  return grouping;
}

}  // namespace tool
