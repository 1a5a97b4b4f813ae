#include "zel/analysis/neighbours.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <span>
#include <utility>

#include "zel/analysis/matrix_view_impl.h"
#include "zel/analysis/memory_impl.h"
#include "zel/analysis/results_impl.h"
#include "zel/base/Zel_univconst.h"
#include "zel/kernels/least_squares.h"
#include "zel/kernels/nearest.h"
#include "zel/kernels/nearest_rows.h"
#include "zel/kernels/nearest_tree.h"
#include "zel/kernels/sums.h"

namespace zel {

namespace {

constexpr int kLongestList = 100;
constexpr int kLongestMean = 50;
/// Fewer rows than this for each column are compared with each other sooner than by a tree, whose
/// boxes are too large then to leave much out.
constexpr std::size_t kFewRows = 128;

using kernels::NearestList;
using kernels::Ties;

/// Offers rows first.. of the matrix, whose 1-based numbers they get, by their distance from a
/// point with more coordinates than the matrix has columns.
void offerByLongProbe(NearestList& list, const TMatrix& matrix, int low, int high,
                      std::span<const double> probe) {
  for (int row = low; row <= high; ++row) {
    double sum = 0;
    for (std::size_t c = 0; c < probe.size(); ++c) {
      const double d = matrix(static_cast<int>(c) + 1, row) - probe[c];
      sum += d * d;
    }
    list.offer(std::sqrt(sum), row);
  }
}

/// The nearest of the rows low..high, with their 1-based numbers.
NearestList nearestTo(const TVector& point, const TMatrix& matrix, int low, int high,
                      std::size_t length) {
  const auto probe = point.Elements();
  NearestList result(length, Ties::earlierFirst);
  if (probe.size() > static_cast<std::size_t>(matrix.NrOfColumns())) {
    offerByLongProbe(result, matrix, low, high, probe);
    return result;
  }
  const auto first = static_cast<std::size_t>(low - 1);
  const auto rows =
      detail::ViewOf(matrix).block(first, 0, static_cast<std::size_t>(high) - first, probe.size());
  kernels::nearestRows(rows, dmEuclid, {probe.data(), 1, probe.size(), 1}, length,
                       Ties::earlierFirst, [&](std::size_t, const NearestList& list) {
                         for (std::size_t k = 0; k < list.found(); ++k) {
                           result.offer(list.distances()[k], list.numbers()[k] + low - 1);
                         }
                       });
  return result;
}

/// A weighted mean.
struct WeightedMean {
  void add(double weight, double value) {
    sum += weight * value;
    weights += weight;
  }
  [[nodiscard]] double value() const { return weights == 0 ? 0 : sum / weights; }

  double sum = 0;
  double weights = 0;
};

double gaussMean(std::span<const double> t, std::span<const double> d, double width) {
  // Relative to the nearest, whose weight may be too small for a double.
  const double least = d.front() * width * (d.front() * width);
  WeightedMean mean;
  for (std::size_t i = 0; i < t.size(); ++i) {
    mean.add(std::exp(least - d[i] * width * (d[i] * width)), t[i]);
  }
  return mean.value();
}

double linearMean(std::span<const double> t, std::span<const double> d, double reach) {
  WeightedMean mean;
  for (std::size_t i = 0; i < t.size(); ++i) {
    const double weight = 1 - d[i] / reach;
    if (weight > 0) mean.add(weight, t[i]);
  }
  return mean.value();
}

double median(std::span<const double> t) {
  double q1 = 0;
  double q2 = 0;
  double q3 = 0;
  TVector(t).Quartiles(0, 0, q1, q2, q3);
  return q2;
}

/// Calls use(value) for the terms 1, x, x^2 and x_a x_b with a < b of a quadratic polynomial.
template <class Use>
void forEachTerm(std::span<const double> x, Use&& use) {
  use(1.0);
  for (const double value : x) use(value);
  for (const double value : x) use(value * value);
  for (std::size_t a = 0; a < x.size(); ++a) {
    for (std::size_t b = a + 1; b < x.size(); ++b) use(x[a] * x[b]);
  }
}

double quadraticEstimate(const TMatrix& matrix, std::span<const int> rows,
                         std::span<const double> t, const TVector& probe) {
  const auto p = static_cast<std::size_t>(matrix.NrOfColumns());
  const std::size_t terms = 1 + 2 * p + p * (p > 0 ? p - 1 : 0) / 2;
  const std::size_t k = rows.size();
  if (terms > std::numeric_limits<std::size_t>::max() / sizeof(double) / k) throw std::bad_alloc();
  detail::Numbers storage(terms * k);
  detail::Numbers x(p);
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t c = 0; c < p; ++c) x[c] = matrix(static_cast<int>(c) + 1, rows[i]);
    double* to = storage.data() + i;
    forEachTerm(x, [&](double value) {
      *to = value;
      to += k;
    });
  }
  detail::Numbers b(terms);
  bool nearSingular = false;
  if (!kernels::svdLeastSquares({storage.data(), k, terms, k}, t, b, {}, nearSingular)) return 0;
  for (std::size_t c = 0; c < p; ++c) x[c] = probe(static_cast<int>(c) + 1);
  double estimate = 0;
  auto coefficient = b.begin();
  forEachTerm(x, [&](double value) { estimate += *coefficient++ * value; });
  return estimate;
}

}  // namespace

void MeanDistanceKNN(const TMatrix* DataMat, int NumNeighbors, int LowRow, int HighRow,
                     TVector* MeanDist) {
  if (!DataMat || !MeanDist || DataMat->NrOfRows() < 1) return;
  detail::GuardFit("MeanDistanceKNN", [&] {
    const int rows = DataMat->NrOfRows();
    int low = std::clamp(LowRow, 1, rows);
    int high = std::clamp(HighRow, 1, rows);
    if (low > high) std::swap(low, high);
    const auto length =
        static_cast<std::size_t>(std::min(std::clamp(NumNeighbors, 1, kLongestMean), rows));
    const auto first = static_cast<std::size_t>(low - 1);
    const kernels::ConstMatrix all = detail::ViewOf(*DataMat);
    const auto range = all.block(first, 0, static_cast<std::size_t>(high) - first, all.columns);
    detail::Numbers means(range.rows);
    const auto use = [&](std::size_t i, std::span<const double> distances) {
      means[i] =
          distances.empty() ? std::numeric_limits<double>::quiet_NaN() : kernels::mean(distances);
    };
    if (range.columns > 0 && range.rows / kFewRows >= range.columns) {
      kernels::nearestOfAll(range, length, use);
    } else {
      kernels::nearestRows(range, dmEuclid, range, length, Ties::earlierFirst,
                           [&](std::size_t i, const NearestList& list) {
                             use(i, list.distances().first(list.found()));
                           });
    }
    MeanDist->CopyFromArray(means, low);
  });
}

void FindNearestNeighbors(int NumNeighbors, const TMatrix* DataMat, int LowRow, int HighRow,
                          const TVector* Probe, TMatrix* NNList, const TCalcDistFunc& DistFunc) {
  if (!DataMat || !NNList || DataMat->NrOfRows() < 1 || (!Probe && !DistFunc)) return;
  const int wanted = std::min({NumNeighbors, kLongestList, DataMat->NrOfRows()});
  if (wanted < 1) return;
  detail::GuardFit("FindNearestNeighbors", [&] {
    const auto length = static_cast<std::size_t>(wanted);
    DataMat->MakeValidRowRange(LowRow, HighRow);
    NearestList list(length, Ties::earlierFirst);
    if (DistFunc) {
      for (int row = LowRow; row <= HighRow; ++row) list.offer(DistFunc(row), row);
    } else {
      list = nearestTo(*Probe, *DataMat, LowRow, HighRow, length);
    }
    for (int k = 1; k <= wanted; ++k) {
      const auto place = static_cast<std::size_t>(k - 1);
      NNList->SetVal(1, k, list.numbers()[place]);
      NNList->SetVal(2, k, list.distances()[place]);
    }
  });
}

void EstimateByKNN(const TMatrix* DataMat, const TVector* Targets, int NumNeighbors,
                   TKnnWMode WMode, double KernelWidth, const TVector* Probe, double& Estimate,
                   double& MeanDist) {
  detail::GuardFit("EstimateByKNN", [&] {
    Estimate = 0;
    MeanDist = uc_MaxDouble;
    if (!DataMat || !Targets || !Probe || DataMat->NrOfRows() < 1) return;
    const int rows = DataMat->NrOfRows();
    const auto length =
        static_cast<std::size_t>(std::clamp(NumNeighbors, 0, std::min(rows, kLongestList)));
    const NearestList list = nearestTo(*Probe, *DataMat, 1, rows, length);
    const auto d = list.distances().first(list.found());
    const auto neighbours = list.numbers().first(list.found());
    if (d.empty()) return;
    MeanDist = kernels::mean(d);
    const double scale = MeanDist == 0 ? 0.001 : MeanDist;
    detail::Numbers t(d.size());
    for (std::size_t i = 0; i < t.size(); ++i) t[i] = (*Targets)(neighbours[i]);
    switch (WMode) {
      case kwmGauss:
        Estimate = gaussMean(t, d, KernelWidth / scale);
        break;
      case kwmAverage:
        Estimate = kernels::mean(t);
        break;
      case kwmMedian:
        Estimate = median(t);
        break;
      case kwmLinear:
        Estimate = linearMean(t, d, scale * KernelWidth);
        break;
      case kwmBiQuad:
        Estimate = quadraticEstimate(*DataMat, neighbours, t, *Probe);
        break;
    }
  });
}

}  // namespace zel
