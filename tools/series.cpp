#include "series.h"

#include <algorithm>

#include "failure.h"
#include "number_text.h"
#include "utf8.h"
#include "variable.h"

namespace tool {
namespace {

std::size_t columnOf(const Table& file, const std::string& wanted) {
  if (!wanted.empty()) return chooseColumn(file, wanted, "--column");
  requireNumbers(file);
  const std::vector<std::size_t> columns = file.numericColumns();
  if (columns.size() > 1) {
    throw Failure(file.source + " has " + std::to_string(columns.size()) +
                  " columns of numbers; --column chooses one");
  }
  return columns[0];
}

}  // namespace

Series seriesOf(const Table& table, const std::string& wanted, const std::string& user) {
  const std::size_t c = columnOf(table, wanted);
  const Column& column = table.columns[c];
  const std::string what =
      table.source + (column.name.empty() ? "" : ", column " + inQuotes(column.name));
  if (!column.missingRows.empty()) {
    const int row = column.missingRows[0];
    const std::string name = printable(table.rowName(row), 30);
    throw Failure(what + ": row " + std::to_string(row) + (name.empty() ? "" : " (" + name + ')') +
                  " has no value, and " + user + " takes a series without gaps");
  }
  return {what, column.title(), table.values(c)};
}

std::string curveBlock(const std::string& name, std::span<const double> values, double first,
                       double step) {
  const std::size_t part = (values.size() + kMostPlaces - 1) / kMostPlaces;
  std::string block = name + " << EOD\n";
  const auto add = [&](std::size_t i) {
    block += shortest(first + step * static_cast<double>(i)) + ' ' + shortest(values[i]) + '\n';
  };
  for (std::size_t start = 0; start < values.size(); start += part) {
    const auto few = values.subspan(start, std::min(part, values.size() - start));
    const auto [least, most] = std::minmax_element(few.begin(), few.end());
    const auto a = static_cast<std::size_t>(least - few.begin()) + start;
    const auto b = static_cast<std::size_t>(most - few.begin()) + start;
    add(std::min(a, b));
    if (a != b) add(std::max(a, b));
  }
  return block + "EOD\n";
}

}  // namespace tool
