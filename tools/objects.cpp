#include "objects.h"

#include <algorithm>
#include <cmath>

#include "failure.h"
#include "utf8.h"
#include "variable.h"

namespace tool {

Objects::Objects(const Table& table, const std::vector<std::size_t>& columns, bool standardised,
                 const std::string& ifConstant)
    : leftOut(rowsWithout(table, columns)), rows(table.rows() - static_cast<int>(leftOut.size())) {
  if (rows < 2) throw Failure(table.source + " has fewer than two rows without a missing value");
  data.Resize(static_cast<int>(columns.size()), rows);
  int c = 0;
  for (const std::size_t from : columns) {
    ++c;
    const Column& column = table.columns[from];
    const std::vector<double> values = withoutRows(table.values(from), leftOut);
    double mean = 0;
    double variance = 0;
    std::copy(values.begin(), values.end(), data.data() + (c - 1) * std::ptrdiff_t{rows});
    data.MeanVar(c, 1, c, rows, mean, variance);
    const bool isConstant =
        std::all_of(values.begin(), values.end(), [&](double v) { return v == values[0]; });
    const auto fail = [&](const std::string& why) {
      throw Failure(table.source + ", column " + inQuotes(column.title()) + ": " + why);
    };
    if (standardised && isConstant) fail("it is constant " + ifConstant);
    if (!std::isfinite(variance)) fail("the values are too large");
    names.push_back(column.title());
    numbers.push_back(column.number);
    means.push_back(mean);
    scales.push_back(standardised ? std::sqrt(variance) : 1);
    for (int r = 1; r <= rows; ++r) data.SetVal(c, r, (data(c, r) - mean) / scales.back());
  }
}

std::vector<int> rowsLeft(const Objects& objects) {
  std::vector<int> left;
  auto out = objects.leftOut.begin();
  const int all = objects.rows + static_cast<int>(objects.leftOut.size());
  for (int row = 1; row <= all; ++row) {
    if (out != objects.leftOut.end() && *out == row) {
      ++out;
    } else {
      left.push_back(row);
    }
  }
  return left;
}

}  // namespace tool
