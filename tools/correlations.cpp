#include "correlations.h"

#include <algorithm>
#include <cmath>
#include <deque>

#include "variable.h"
#include "zel/vector/Zel_vector.h"

namespace tool {
namespace {

bool isConstant(const zel::TVector& x) {
  return std::all_of(x.begin(), x.end(), [&](double v) { return v == x(1); });
}

std::optional<double> pearson(const zel::TVector& x, const zel::TVector& y, int n) {
  if (n < 2 || isConstant(x) || isConstant(y)) return std::nullopt;
  const double r = x.PearsonCorrCoeff(&y);
  return std::isfinite(r) ? std::optional(r) : std::nullopt;  // none for infinite values
}

}  // namespace

std::pair<int, int> Correlations::rangeOfPairs() const {
  std::pair range(pairs[0][0], pairs[0][0]);
  for (const auto& counts : pairs) {
    const auto [low, high] = std::minmax_element(counts.begin(), counts.end());
    range = {std::min(range.first, *low), std::max(range.second, *high)};
  }
  return range;
}

Correlations correlate(const Table& table, const std::vector<std::size_t>& columns) {
  const std::size_t k = columns.size();
  Correlations result;
  result.r.assign(k, std::vector<std::optional<double>>(k));
  result.pairs.assign(k, std::vector<int>(k));
  const auto valuesOf = [&](std::size_t c) { return table.values(columns[c]); };
  std::deque<zel::TVector> whole;  // vectors do not move
  for (std::size_t i = 0; i < k; ++i) {
    const Column& column = table.columns[columns[i]];
    result.names.push_back(column.title());
    result.numbers.push_back(column.number);
    whole.emplace_back(valuesOf(i));
    for (std::size_t j = 0; j <= i; ++j) {
      const std::vector<int> leftOut = rowsWithout(table, {columns[i], columns[j]});
      const int n = table.rows() - static_cast<int>(leftOut.size());
      const std::optional<double> r =
          leftOut.empty() ? pearson(whole[i], whole[j], n)
                          : pearson(zel::TVector(withoutRows(valuesOf(i), leftOut)),
                                    zel::TVector(withoutRows(valuesOf(j), leftOut)), n);
      result.r[i][j] = result.r[j][i] = r;
      result.pairs[i][j] = result.pairs[j][i] = n;
    }
  }
  return result;
}

}  // namespace tool
