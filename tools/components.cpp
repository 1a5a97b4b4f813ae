#include "components.h"

#include <algorithm>
#include <cmath>

#include "failure.h"
#include "objects.h"
#include "zel/analysis/Zel_math2.h"

namespace tool {

Components componentsOf(const Table& table, const std::vector<std::size_t>& columns,
                        bool standardised) {
  Objects objects(
      table, columns, standardised,
      "and so has no correlations (--column leaves it out, --mode covariance takes it)");
  const int n = objects.data.NrOfColumns();
  Components result;
  result.names = objects.names;
  result.numbers = objects.numbers;
  result.leftOut = objects.leftOut;
  result.rows = objects.rows;
  if (!zel::CalcPrincComp(&objects.data, 0, 0, 0, 0, standardised ? 2 : 1, false)) {
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
  objects.data.Multiply(&vectors, &scores);
  for (int k = 1; k <= n; ++k) {
    const auto column = scores.Column(k);
    result.scores.emplace_back(column.begin(), column.end());
  }
  return result;
}

}  // namespace tool
