#include "zel/statistics/contingencytests.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>

#include "zel/base/rounding.h"
#include "zel/base/types.h"
#include "zel/kernels/fourfold.h"
#include "zel/statistics/chisquaredistribution.h"

namespace zel {

namespace {

constexpr int kMostFactorial = 1000;

/// A table with margins.
struct Margins {
  explicit Margins(const TInt2DArray& table)
      : table(table), rows(table.Length(0) - 1), columns(table.Length(1) - 1) {}

  [[nodiscard]] int row(std::size_t i) const { return table(i, columns); }
  [[nodiscard]] int column(std::size_t j) const { return table(rows, j); }
  [[nodiscard]] int total() const { return table(rows, columns); }

  const TInt2DArray& table;
  std::size_t rows, columns;
};

Extended product(int a, int b) { return static_cast<Extended>(std::int64_t{a} * b); }

Extended pairs(int n) { return static_cast<Extended>(std::int64_t{n} * (n - std::int64_t{1}) / 2); }

/// Reads a table without margins.
/// @return 0 or the code of what is wrong
int readFourfold(const TInt2DArray& table, kernels::Fourfold& t) {
  if (table.Length(0) != 2 || table.Length(1) != 2) return -1;
  const auto total = std::accumulate(table.begin(), table.end(), std::int64_t{0});
  if (total > kMostFactorial) return -2;
  if (std::any_of(table.begin(), table.end(), [](int count) { return count < 0; })) return -3;
  t = {table(0, 0), table(0, 1), table(1, 0), table(1, 1)};
  return 0;
}

int sumOf(std::span<const int> counts) {
  return RoundToInt<int>(
      static_cast<Extended>(std::accumulate(counts.begin(), counts.end(), std::int64_t{0})));
}

}  // namespace

int Chi2OfContTab(const TInt2DArray& ContTab, double& Chi2, double& p) {
  Chi2 = p = 0;
  if (ContTab.Length(0) < 3 || ContTab.Length(1) < 3) return -1;
  const Margins m(ContTab);
  Extended sum = 0;
  for (std::size_t i = 0; i < m.rows; ++i) {
    for (std::size_t j = 0; j < m.columns; ++j) {
      const Extended expected = product(m.row(i), m.column(j)) / m.total();
      if (!(expected > 0)) continue;
      const Extended excess = ContTab(i, j) - expected;
      sum += excess * excess / expected;
    }
  }
  Chi2 = static_cast<double>(sum);
  constexpr std::size_t kMost = std::numeric_limits<int>::max();
  p = chi2DistriComplement(Chi2, static_cast<int>(std::min(kMost, (m.rows - 1) * (m.columns - 1))));
  return 0;
}

int Chi2OfContTabYates(const TInt2DArray& ContTab, double& Chi2, double& p) {
  Chi2 = p = 0;
  if (ContTab.Length(0) != 3 || ContTab.Length(1) != 3) return -1;
  const Margins m(ContTab);
  const Extended margins = product(m.row(0), m.row(1)) * product(m.column(0), m.column(1));
  if (margins == 0) return -2;
  const Extended n = m.total();
  const Extended excess =
      std::abs(product(ContTab(0, 0), ContTab(1, 1)) - product(ContTab(0, 1), ContTab(1, 0))) -
      n / 2;
  Chi2 = static_cast<double>(n * excess * excess / margins);
  p = chi2DistriComplement(Chi2, 1);
  return 0;
}

int PerformChi2DistComp(std::span<const int> Observed, std::span<const int> Expected, double& Chi2,
                        double& p, int& DF, int& SumObs, int& SumExp) {
  Chi2 = p = 0;
  DF = -1;
  SumObs = sumOf(Observed);
  SumExp = sumOf(Expected);
  if (SumObs == 0 || SumExp == 0) return -3;
  if (Observed.size() != Expected.size()) return -1;
  const double k1 = std::sqrt(static_cast<double>(SumExp) / SumObs);
  const double k2 = std::sqrt(static_cast<double>(SumObs) / SumExp);
  double observed = 0;
  double expected = 0;
  const auto closeBin = [&] {
    const double excess = observed * k1 - expected * k2;
    Chi2 += excess * excess / expected;
    ++DF;
    observed = expected = 0;
  };
  for (std::size_t i = 0; i < Observed.size(); ++i) {
    observed += Observed[i];
    expected += Expected[i];
    if (expected > 5 && i + 1 < Expected.size() && Expected[i + 1] != 0) closeBin();
  }
  if (observed + expected > 0 && expected != 0) closeBin();
  p = chi2DistriComplement(Chi2, DF);
  return 0;
}

int Prob2x2Contingency(const TInt2DArray& ContTab, double& p) {
  p = 0;
  kernels::Fourfold table;
  if (const int code = readFourfold(ContTab, table)) return code;
  p = kernels::fourfoldProbability(table);
  return 0;
}

int FisherExactTest(const TInt2DArray& ContTab, double& pLeft, double& pRight, double& pTwo) {
  pLeft = pRight = pTwo = 0;
  kernels::Fourfold table;
  if (const int code = readFourfold(ContTab, table)) return code;
  const kernels::FisherTails tails = kernels::fisherTails(table);
  pLeft = tails.left;
  pRight = tails.right;
  pTwo = tails.two;
  return 0;
}

double AdjustedRandIx(const TInt2DArray& ContTab) {
  if (ContTab.Length(0) < 2 || ContTab.Length(1) < 2) return 0;
  const Margins m(ContTab);
  Extended inCells = 0;
  Extended inRows = 0;
  Extended inColumns = 0;
  for (std::size_t i = 0; i < m.rows; ++i) {
    inRows += pairs(m.row(i));
    for (std::size_t j = 0; j < m.columns; ++j) inCells += pairs(ContTab(i, j));
  }
  for (std::size_t j = 0; j < m.columns; ++j) inColumns += pairs(m.column(j));
  const Extended all = pairs(m.total());
  const Extended byChance = all == 0 ? 0 : inRows * inColumns / all;
  const Extended most = (inRows + inColumns) / 2;
  return most == byChance ? 1 : static_cast<double>((inCells - byChance) / (most - byChance));
}

}  // namespace zel
