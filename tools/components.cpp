#include "components.h"

#include <algorithm>
#include <cmath>

#include "failure.h"
#include "utf8.h"
#include "variable.h"
#include "zel/analysis/Zel_math2.h"

namespace tool {

Components componentsOf(const Table& table, const std::vector<std::size_t>& columns,
                        bool standardised) {
  Components result;
  result.leftOut = rowsWithout(table, columns);
  result.rows = table.rows() - static_cast<int>(result.leftOut.size());
  if (result.rows < 2) {
    throw Failure(table.source + " has fewer than two rows without a missing value");
  }
  const int n = static_cast<int>(columns.size());
  zel::TMatrix data;
  data.Resize(n, result.rows);
  for (int c = 1; c <= n; ++c) {
    const std::size_t from = columns[static_cast<std::size_t>(c - 1)];
    const Column& column = table.columns[from];
    const std::vector<double> values = withoutRows(table.values(from), result.leftOut);
    double mean = 0;
    double variance = 0;
    std::copy(values.begin(), values.end(), data.data() + (c - 1) * std::ptrdiff_t{result.rows});
    data.MeanVar(c, 1, c, result.rows, mean, variance);
    const bool isConstant =
        std::all_of(values.begin(), values.end(), [&](double v) { return v == values[0]; });
    if (standardised && isConstant) {
      throw Failure(table.source + ", column " + inQuotes(column.title()) +
                    ": it is constant and so has no correlations (--column leaves it out, "
                    "--mode covariance takes it)");
    }
    if (!std::isfinite(variance)) {
      throw Failure(table.source + ", column " + inQuotes(column.title()) +
                    ": the values are too large");
    }
    result.names.push_back(column.title());
    result.numbers.push_back(column.number);
    // The scores are those of the data about their means.
    const double scale = standardised ? std::sqrt(variance) : 1;
    for (int r = 1; r <= result.rows; ++r) data.SetVal(c, r, (data(c, r) - mean) / scale);
  }
  if (!zel::CalcPrincComp(&data, 0, 0, 0, 0, standardised ? 2 : 1, false)) {
    throw Failure(table.source + ": the eigenvectors cannot be found");
  }
  double total = 0;
  for (int k = 1; k <= n; ++k) {
    // Roundoff may leave a variance of 0 below it.
    result.eigenvalues.push_back(std::max(0.0, zel::GetEigenResult(k, 0)));
    total += result.eigenvalues.back();
  }
  zel::TMatrix vectors;
  vectors.Resize(n, n);
  for (int k = 1; k <= n; ++k) {
    std::vector<double> loading;
    for (int i = 1; i <= n; ++i) loading.push_back(zel::GetEigenResult(k, i));
    const double largest =
        *std::max_element(loading.begin(), loading.end(),
                          [](double a, double b) { return std::abs(a) < std::abs(b); });
    for (int i = 1; i <= n; ++i) {
      double& v = loading[static_cast<std::size_t>(i - 1)];
      if (largest < 0) v = -v;
      vectors.SetVal(k, i, v);
    }
    result.loadings.push_back(std::move(loading));
    const double part = total > 0 ? result.eigenvalues[static_cast<std::size_t>(k - 1)] / total : 0;
    result.explained.push_back(part);
    result.cumulative.push_back(part + (k > 1 ? result.cumulative.back() : 0));
  }
  zel::RemoveEigenMatrix();
  zel::TMatrix scores;
  data.Multiply(&vectors, &scores);
  for (int k = 1; k <= n; ++k) {
    const auto column = scores.Column(k);
    result.scores.emplace_back(column.begin(), column.end());
  }
  return result;
}

}  // namespace tool
