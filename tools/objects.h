/// @file
/// Rows of a table as the objects of an analysis.
#pragma once

#include <string>
#include <vector>

#include "table_file.h"
#include "zel/matrix/Zel_matrix.h"

namespace tool {

/// The rows in which no value is missing, each variable about its mean.
struct Objects {
  /// @param columns       positions in table.columns
  /// @param standardised  each variable divided by its standard deviation
  /// @param ifConstant    what a message says of a constant one then
  /// @throws Failure  fewer than two such rows, a constant column where it matters, or values that
  ///   are too large
  Objects(const Table& table, const std::vector<std::size_t>& columns, bool standardised,
          const std::string& ifConstant);

  std::vector<std::string> names;  // of the variables
  std::vector<int> numbers;        // of their columns in the file
  std::vector<int> leftOut;        // rows with a missing value
  int rows = 0;                    // that are left
  std::vector<double> means;       // that were subtracted
  std::vector<double> scales;      // divisors; 1 if not standardised
  zel::TMatrix data;
};

/// The rows that are left, ascending.
std::vector<int> rowsLeft(const Objects& objects);

}  // namespace tool
