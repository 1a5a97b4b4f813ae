/// @file
/// Correlations of the columns of a table.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "table_file.h"

namespace tool {

/// A symmetric matrix of pairs of variables, numbered from 0.
struct Correlations {
  std::vector<std::string> names;
  std::vector<int> numbers;                           // of the columns in the file
  std::vector<std::vector<std::optional<double>>> r;  // none if undefined
  std::vector<std::vector<int>> pairs;                // rows in which neither value is missing

  [[nodiscard]] std::size_t size() const { return names.size(); }
  /// The pairs of variables with the fewest and with the most rows.
  [[nodiscard]] std::pair<int, int> rangeOfPairs() const;
};

/// Pearson's correlation of each pair of columns over the rows in which neither value is missing.
/// It is undefined for fewer than two such rows, and if one of the columns is constant over them.
/// @param columns  positions in table.columns
Correlations correlate(const Table& table, const std::vector<std::size_t>& columns);

}  // namespace tool
