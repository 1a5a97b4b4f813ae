#include "zel/statistics/outliertests.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>

#include "zel/kernels/comb_sort.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/search.h"
#include "zel/statistics/criticalvalues.h"

namespace zel {

namespace {

constexpr int kLeastDixon = 3;
constexpr int kMostDixon = 100;
constexpr int kLeastGrubbs = 4;

/// r_ij of n values: i neighbours away, without the j values of the other end.
struct DixonRatio {
  std::size_t i, j;
};

DixonRatio dixonRatio(int n) {
  if (n <= 7) return {1, 0};
  if (n <= 10) return {1, 1};
  if (n <= 13) return {2, 1};
  return {2, 2};
}

double ratio(double gap, double range) { return range == 0 ? 0 : gap / range; }

}  // namespace

int DeanDixonTest(const TVector* Data, TSignifLevelEx alpha, double& Q) {
  Q = 0;
  const int n = Data ? Data->NrOfElem() : 0;
  if (n < kLeastDixon) throw EZELStatisError("DeanDixonTest: number of data points is too low");
  if (n > kMostDixon) throw EZELStatisError("DeanDixonTest: number of data points is too high");
  std::array<double, kMostDixon> copy;
  const std::span x(copy.data(), Data->size());
  std::ranges::copy(Data->Elements(), x.begin());
  kernels::combSortFast(x, x.size(), true);
  const auto [i, j] = dixonRatio(n);
  const std::size_t last = x.size() - 1;
  const double low = ratio(x[i] - x[0], x[last - j] - x[0]);
  const double high = ratio(x[last] - x[last - i], x[last] - x[j]);
  const bool isHigh = high > low;
  Q = isHigh ? high : low;
  if (!(Q > DeanDixonCriticalValues(n, alpha))) return 0;
  return static_cast<int>(kernels::findExact(Data->Elements(), isHigh ? x[last] : x[0]) + 1);
}

int GrubbsTest(const TVector* Data, double alpha, double& G) {
  G = 0;
  if (!(alpha > 0 && alpha < 1)) throw EZELStatisError("GrubbsTest: invalid level of significance");
  const int n = Data ? Data->NrOfElem() : 0;
  if (n < kLeastGrubbs) throw EZELStatisError("GrubbsTest: number of data points is too low");
  double mean, variance;
  Data->MeanVar(0, 0, mean, variance);
  if (!(variance > 0)) return 0;
  const auto ends = kernels::minMax(Data->Elements());
  const double below = mean - ends.minimum;
  const double above = ends.maximum - mean;
  const bool isLow = below > above || (below == above && ends.minIndex < ends.maxIndex);
  G = std::max(below, above) / std::sqrt(variance);
  if (!(G > GrubbsCriticalValues(n, alpha, true))) return 0;
  return static_cast<int>((isLow ? ends.minIndex : ends.maxIndex) + 1);
}

}  // namespace zel
