/// @file
/// Rows by the categories of a column.
#pragma once

#include <string>
#include <vector>

#include "table_file.h"

namespace tool {

/// The rows of each category that occurs.
struct Grouping {
  std::string title;  // of the column
  int column = 0;     // its number in the file
  std::vector<std::string> labels;
  std::vector<std::vector<int>> rows;  // [category], ascending
  int missing = 0;                     // rows without a category

  [[nodiscard]] std::size_t size() const { return labels.size(); }
};

/// Groups the rows by a column of categories, in their order, or of numbers with at most 150
/// different values, in ascending order; also by the row names.
/// @param wanted  name or number of the column
/// @param option  what names it on the command line, for messages
/// @throws Failure  there is no such column, it has too many different values, or none
Grouping groupingOf(const Table& table, const std::string& wanted, const std::string& option);

}  // namespace tool
