/// @file
/// Principal components of the columns of a table.
#pragma once

#include <string>
#include <vector>

#include "table_file.h"

namespace tool {

/// As many components as variables, the largest variance first.
struct Components {
  std::vector<std::string> names;             // of the variables
  std::vector<int> numbers;                   // of their columns in the file
  std::vector<int> leftOut;                   // rows with a missing value
  int rows = 0;                               // that are left
  std::vector<double> eigenvalues;            // variances of the components
  std::vector<double> explained;              // parts of the sum of all variances
  std::vector<double> cumulative;             // and of this and all before
  std::vector<std::vector<double>> loadings;  // [component][variable]: unit eigenvectors, whose
                                              // element of largest magnitude is positive
  std::vector<std::vector<double>> scores;    // [component][row]
};

/// Over the rows in which no value is missing.
/// @param columns       positions in table.columns
/// @param standardised  of the correlations, otherwise of the covariances
/// @throws Failure  fewer than two such rows, a constant column where it matters, or values that
///   are too large
Components componentsOf(const Table& table, const std::vector<std::size_t>& columns,
                        bool standardised);

}  // namespace tool
