#include "zel/openarrays/arraystatistics.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "zel/kernels/double_double.h"
#include "zel/kernels/edge_values.h"
#include "zel/kernels/histogram.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/sums.h"
#include "zel/matrix/rules_impl.h"
#include "zel/openarrays/cells_impl.h"

namespace zel {

namespace {

using detail::kDone;
using detail::kEmpty;
using detail::kInvalid;
using detail::TBlock;
using detail::TBox;
using detail::TCorner;

/// Calls use(cells) with the cells of a range, if it is one.
template <class T, int Rank, class Use>
int withRange(const char* routine, const TBlock<const T, Rank>& a, const TCorner<Rank>& low,
              const TCorner<Rank>& high, Use&& use) {
  TBox<Rank> box;
  const int fault = detail::TakeBox(a, low, high, box);
  if (fault == kDone) detail::WithCells(routine, a, box, use);
  return fault;
}

// Moments.

/// Variance with divisor n - 1 also of two elements, which the kernel leaves out; 0 of one.
template <class T>
kernels::MeanVariance momentsOf(std::span<const T> x) {
  auto m = kernels::meanVariance(x);
  if (x.size() < 3) {
    const auto difference =
        static_cast<long double>(x.back()) - static_cast<long double>(x.front());
    m.variance = static_cast<double>(difference * difference / 2);
  }
  return m;
}

/// Square root of the variance; if this leaves the normal range, of data scaled by a power of two.
template <class T>
double standardDeviation(std::span<const T> x) {
  const double variance = momentsOf(x).variance;
  if constexpr (std::is_floating_point_v<T>) {
    if (!std::isnormal(variance) && !std::isnan(variance)) {
      const auto limits = kernels::minMax(x, {HUGE_VAL, -HUGE_VAL});
      const T largest = std::max(std::fabs(limits.minimum), std::fabs(limits.maximum));
      if (limits.minimum < limits.maximum && std::isfinite(largest)) {
        const int exponent = std::ilogb(largest);
        std::vector<T> scaled(x.size());
        std::ranges::transform(x, scaled.begin(), [&](T v) { return std::ldexp(v, -exponent); });
        return std::ldexp(std::sqrt(momentsOf(std::span<const T>(scaled)).variance), exponent);
      }
    }
  }
  return std::sqrt(variance);
}

template <class T, int Rank>
int meanOf(const TBlock<const T, Rank>& a, const TCorner<Rank>& low, const TCorner<Rank>& high,
           double& mean) {
  // Shorter runs are faster copied together than summed one by one.
  constexpr std::size_t kLongRun = 512;
  mean = 0;
  TBox<Rank> box;
  if (const int fault = detail::TakeBox(a, low, high, box); fault != kDone) return fault;
  if (box.counts.back() >= kLongRun) {
    kernels::DoubleDouble sum{0, 0};
    detail::ForEachRun(a, box, [&](std::span<const T> run) { sum = sum + kernels::sum(run); });
    const auto count = static_cast<double>(detail::CountOf<Rank>(box.counts));
    const kernels::DoubleDouble quotient = sum / count;
    mean = quotient.hi;
    if (isFinite(quotient)) return kDone;
  }
  detail::WithCells("MeanArray", a, box, [&](std::span<const T> x) { mean = kernels::mean(x); });
  return kDone;
}

template <class T, int Rank>
int deviationOf(const TBlock<const T, Rank>& a, const TCorner<Rank>& low, const TCorner<Rank>& high,
                double& deviation) {
  deviation = 0;
  return withRange("StdDevArray", a, low, high, [&](std::span<const T> x) {
    deviation = detail::GuardArrays("StdDevArray", [&] { return standardDeviation(x); });
  });
}

template <class T, int Rank>
int meanVariance(const TBlock<const T, Rank>& a, const TCorner<Rank>& low,
                 const TCorner<Rank>& high, double& mean, double& variance) {
  mean = variance = 0;
  return withRange("MeanVarArray", a, low, high, [&](std::span<const T> x) {
    const auto m = momentsOf(x);
    mean = m.mean;
    variance = m.variance;
  });
}

// Counts and percentiles.

int countOf(std::size_t n) {
  return static_cast<int>(std::min<std::size_t>(n, std::numeric_limits<int>::max()));
}

template <class T, int Rank>
int countValues(const TBlock<const T, Rank>& a, const TCorner<Rank>& low, const TCorner<Rank>& high,
                T intervalLow, T intervalHigh) {
  TBox<Rank> box;
  if (const int fault = detail::TakeBox(a, low, high, box); fault != kDone) return fault;
  std::size_t count = 0;
  detail::ForEachRun(a, box, [&](std::span<const T> run) {
    for (const T x : run) count += intervalLow <= x && x <= intervalHigh;
  });
  return countOf(count);
}

template <int Rank>
int countTrue(const TBlock<const bool, Rank>& a) {
  if (a.empty()) return kEmpty;
  return countOf(static_cast<std::size_t>(std::ranges::count(a.cells(), true)));
}

double percentile(std::span<const double> x, double prob) {
  if (x.empty()) return 0;
  return detail::GuardArrays("PercentileArray", [&] { return detail::RankedValue(x, prob); });
}

double percentile(const TBlock<const double, 2>& a, TCorner<2> low, TCorner<2> high, double prob) {
  if (a.empty()) return 0;
  TBox<2> box;
  for (std::size_t d = 0; d < 2; ++d) {
    const auto last = static_cast<std::int64_t>(a.extents[d]) - 1;
    auto [from, to] = std::minmax(
        {std::clamp<std::int64_t>(low[d], 0, last), std::clamp<std::int64_t>(high[d], 0, last)});
    box.low[d] = static_cast<std::size_t>(from);
    box.counts[d] = static_cast<std::size_t>(to - from + 1);
  }
  return detail::WithCells("PercentileArray", a, box,
                           [&](std::span<const double> x) { return percentile(x, prob); });
}

// Frequencies and edges.

struct Bins {
  double first;
  double last;
  double width;
};

struct Frequencies {
  TIntArray& counts;
  int& underflow;
  int& overflow;
  int& largest;
};

/// Checks a range as the frequencies do; all indices 0 make it the whole array.
template <int Rank>
int takeRegion(const TBlock<const double, Rank>& a, const TCorner<Rank>& low,
               const TCorner<Rank>& high, TBox<Rank>& box) {
  constexpr int kOutside = -1;
  constexpr int kReversed = -2;
  if (a.empty()) return kOutside;
  const auto isZero = [](int index) { return index == 0; };
  if (std::ranges::all_of(low, isZero) && std::ranges::all_of(high, isZero)) {
    box = {{}, a.extents};
    return kDone;
  }
  for (const auto& corner : {low, high}) {
    for (std::size_t d = 0; d < Rank; ++d) {
      if (corner[d] < 0 || static_cast<std::size_t>(corner[d]) >= a.extents[d]) return kOutside;
    }
  }
  return detail::TakeBox(a, low, high, box) == kDone ? kDone : kReversed;
}

template <int Rank>
int frequencies(const TBlock<const double, Rank>& a, const TBool2DArray* mask,
                const TCorner<Rank>& low, const TCorner<Rank>& high, const Bins& bins,
                const Frequencies& result) {
  constexpr int kMostBins = 1000;
  TBox<Rank> box;
  if (const int fault = takeRegion(a, low, high, box); fault != kDone) return fault;
  if (!(bins.first < bins.last)) return -3;
  if (!(bins.width > 0)) return -4;
  const int count = kernels::numberOfBins(bins.first, bins.last, bins.width);
  if (count < 1 || count > kMostBins) return -5;
  if constexpr (Rank == 2) {
    if (mask && detail::ExtentsOf<2>(*mask) != a.extents) return -6;
  }
  TIntArray counts;
  detail::GuardArrays("FrequDistOfArray", [&] { counts.resize(static_cast<std::size_t>(count)); });
  const auto add = [&](int bin, std::int64_t times) {
    int& c = counts[static_cast<std::size_t>(bin)];
    kernels::growCount(c, times);
    return c;
  };
  kernels::HistogramCounter counter(bins.first, bins.last, bins.width, count, add);
  detail::ForEachRun(a, box, [&](std::span<const double> run) {
    const bool* masked = mask ? mask->data() + (run.data() - a.data) : nullptr;
    for (const double x : run) {
      if (!masked || !*masked++) counter.add(x);
    }
  });
  result.counts.swap(counts);
  result.underflow = counter.underflow();
  result.overflow = counter.overflow();
  result.largest = counter.maxCount();
  return kDone;
}

template <class T>
int edgeVector(const TDynArray<T, 2>& a, TOrientation orientation, TEdgeOp operation,
               TDoubleArray& dest) {
  if (a.empty()) return kEmpty;
  TDoubleArray edge;
  detail::GuardArrays("EdgeVector", [&] {
    edge.resize(a.Length(orientation == orVertical ? 1 : 0));
    kernels::edgeValues<T>(detail::MatrixOf(a), orientation, operation, edge);
  });
  dest.swap(edge);
  return kDone;
}

}  // namespace

int MeanArray(std::span<const double> Arr, int LowIx, int HighIx, double& Mean) {
  return meanOf(detail::BlockOf(Arr), {LowIx}, {HighIx}, Mean);
}
int MeanArray(const TDouble2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
              double& Mean) {
  return meanOf(detail::BlockOf(Arr), {LowCol, LowRow}, {HighCol, HighRow}, Mean);
}
int MeanArray(const TDouble3DArray& Arr, int LowCol, int LowRow, int LowLayer, int HighCol,
              int HighRow, int HighLayer, double& Mean) {
  return meanOf(detail::BlockOf(Arr), {LowCol, LowRow, LowLayer}, {HighCol, HighRow, HighLayer},
                Mean);
}
int MeanArray(const TDouble4DArray& Arr, int LowCol, int LowRow, int LowLayer, int LowTSlot,
              int HighCol, int HighRow, int HighLayer, int HighTSlot, double& Mean) {
  return meanOf(detail::BlockOf(Arr), {LowCol, LowRow, LowLayer, LowTSlot},
                {HighCol, HighRow, HighLayer, HighTSlot}, Mean);
}
int MeanArray(std::span<const int> Arr, int LowIx, int HighIx, double& Mean) {
  return meanOf(detail::BlockOf(Arr), {LowIx}, {HighIx}, Mean);
}
int MeanArray(const TInt2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
              double& Mean) {
  return meanOf(detail::BlockOf(Arr), {LowCol, LowRow}, {HighCol, HighRow}, Mean);
}
int MeanArray(const TInt3DArray& Arr, int LowCol, int LowRow, int LowLayer, int HighCol,
              int HighRow, int HighLayer, double& Mean) {
  return meanOf(detail::BlockOf(Arr), {LowCol, LowRow, LowLayer}, {HighCol, HighRow, HighLayer},
                Mean);
}
int MeanArray(const TInt4DArray& Arr, int LowCol, int LowRow, int LowLayer, int LowTSlot,
              int HighCol, int HighRow, int HighLayer, int HighTSlot, double& Mean) {
  return meanOf(detail::BlockOf(Arr), {LowCol, LowRow, LowLayer, LowTSlot},
                {HighCol, HighRow, HighLayer, HighTSlot}, Mean);
}

int StdDevArray(std::span<const double> Arr, int LowIx, int HighIx, double& StdDev) {
  return deviationOf(detail::BlockOf(Arr), {LowIx}, {HighIx}, StdDev);
}
int StdDevArray(const TDouble2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                double& StdDev) {
  return deviationOf(detail::BlockOf(Arr), {LowCol, LowRow}, {HighCol, HighRow}, StdDev);
}
int StdDevArray(const TDouble3DArray& Arr, int LowCol, int LowRow, int LowLayer, int HighCol,
                int HighRow, int HighLayer, double& StdDev) {
  return deviationOf(detail::BlockOf(Arr), {LowCol, LowRow, LowLayer},
                     {HighCol, HighRow, HighLayer}, StdDev);
}
int StdDevArray(const TDouble4DArray& Arr, int LowCol, int LowRow, int LowLayer, int LowTSlot,
                int HighCol, int HighRow, int HighLayer, int HighTSlot, double& StdDev) {
  return deviationOf(detail::BlockOf(Arr), {LowCol, LowRow, LowLayer, LowTSlot},
                     {HighCol, HighRow, HighLayer, HighTSlot}, StdDev);
}
int StdDevArray(std::span<const int> Arr, int LowIx, int HighIx, double& StdDev) {
  return deviationOf(detail::BlockOf(Arr), {LowIx}, {HighIx}, StdDev);
}
int StdDevArray(const TInt2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                double& StdDev) {
  return deviationOf(detail::BlockOf(Arr), {LowCol, LowRow}, {HighCol, HighRow}, StdDev);
}
int StdDevArray(const TInt3DArray& Arr, int LowCol, int LowRow, int LowLayer, int HighCol,
                int HighRow, int HighLayer, double& StdDev) {
  return deviationOf(detail::BlockOf(Arr), {LowCol, LowRow, LowLayer},
                     {HighCol, HighRow, HighLayer}, StdDev);
}
int StdDevArray(const TInt4DArray& Arr, int LowCol, int LowRow, int LowLayer, int LowTSlot,
                int HighCol, int HighRow, int HighLayer, int HighTSlot, double& StdDev) {
  return deviationOf(detail::BlockOf(Arr), {LowCol, LowRow, LowLayer, LowTSlot},
                     {HighCol, HighRow, HighLayer, HighTSlot}, StdDev);
}

int MeanVarArray(std::span<const double> Arr, int LowIx, int HighIx, double& Mean,
                 double& Variance) {
  return meanVariance(detail::BlockOf(Arr), {LowIx}, {HighIx}, Mean, Variance);
}
int MeanVarArray(const TDouble2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                 double& Mean, double& Variance) {
  return meanVariance(detail::BlockOf(Arr), {LowCol, LowRow}, {HighCol, HighRow}, Mean, Variance);
}
int MeanVarArray(std::span<const int> Arr, int LowIx, int HighIx, double& Mean, double& Variance) {
  return meanVariance(detail::BlockOf(Arr), {LowIx}, {HighIx}, Mean, Variance);
}
int MeanVarArray(const TInt2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                 double& Mean, double& Variance) {
  return meanVariance(detail::BlockOf(Arr), {LowCol, LowRow}, {HighCol, HighRow}, Mean, Variance);
}

int CountValues(std::span<const double> Arr, int LowIx, int HighIx, double IntervalLow,
                double IntervalHigh) {
  return countValues(detail::BlockOf(Arr), {LowIx}, {HighIx}, IntervalLow, IntervalHigh);
}
int CountValues(const TDouble2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                double IntervalLow, double IntervalHigh) {
  return countValues(detail::BlockOf(Arr), {LowCol, LowRow}, {HighCol, HighRow}, IntervalLow,
                     IntervalHigh);
}
int CountValues(const TDouble3DArray& Arr, int LowCol, int LowRow, int LowLayer, int HighCol,
                int HighRow, int HighLayer, double IntervalLow, double IntervalHigh) {
  return countValues(detail::BlockOf(Arr), {LowCol, LowRow, LowLayer},
                     {HighCol, HighRow, HighLayer}, IntervalLow, IntervalHigh);
}
int CountValues(const TDouble4DArray& Arr, int LowCol, int LowRow, int LowLayer, int LowTSlot,
                int HighCol, int HighRow, int HighLayer, int HighTSlot, double IntervalLow,
                double IntervalHigh) {
  return countValues(detail::BlockOf(Arr), {LowCol, LowRow, LowLayer, LowTSlot},
                     {HighCol, HighRow, HighLayer, HighTSlot}, IntervalLow, IntervalHigh);
}
int CountValues(std::span<const int> Arr, int LowIx, int HighIx, int IntervalLow,
                int IntervalHigh) {
  return countValues(detail::BlockOf(Arr), {LowIx}, {HighIx}, IntervalLow, IntervalHigh);
}
int CountValues(const TInt2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                int IntervalLow, int IntervalHigh) {
  return countValues(detail::BlockOf(Arr), {LowCol, LowRow}, {HighCol, HighRow}, IntervalLow,
                     IntervalHigh);
}
int CountValues(const TInt3DArray& Arr, int LowCol, int LowRow, int LowLayer, int HighCol,
                int HighRow, int HighLayer, int IntervalLow, int IntervalHigh) {
  return countValues(detail::BlockOf(Arr), {LowCol, LowRow, LowLayer},
                     {HighCol, HighRow, HighLayer}, IntervalLow, IntervalHigh);
}
int CountValues(const TInt4DArray& Arr, int LowCol, int LowRow, int LowLayer, int LowTSlot,
                int HighCol, int HighRow, int HighLayer, int HighTSlot, int IntervalLow,
                int IntervalHigh) {
  return countValues(detail::BlockOf(Arr), {LowCol, LowRow, LowLayer, LowTSlot},
                     {HighCol, HighRow, HighLayer, HighTSlot}, IntervalLow, IntervalHigh);
}

int CountTrueCellsOfArray(std::span<const bool> Arr) { return countTrue(detail::BlockOf(Arr)); }
int CountTrueCellsOfArray(const TBool2DArray& Arr) { return countTrue(detail::BlockOf(Arr)); }

double PercentileArray(double prob, std::span<const double> Arr) { return percentile(Arr, prob); }
double PercentileArray(double prob, const TDouble2DArray& Arr, int LowCol, int LowRow, int HighCol,
                       int HighRow) {
  return percentile(detail::BlockOf(Arr), {LowCol, LowRow}, {HighCol, HighRow}, prob);
}

int FrequDistOfArray(const TDouble2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                     double FirstBin, double LastBin, double BinWidth, TIntArray& Distri,
                     int& Underflow, int& Overflow, int& MaxCnt) {
  return frequencies(detail::BlockOf(Arr), nullptr, {LowCol, LowRow}, {HighCol, HighRow},
                     {FirstBin, LastBin, BinWidth}, {Distri, Underflow, Overflow, MaxCnt});
}
int FrequDistOfArray(const TDouble2DArray& Arr, const TBool2DArray& Mask, int LowCol, int LowRow,
                     int HighCol, int HighRow, double FirstBin, double LastBin, double BinWidth,
                     TIntArray& Distri, int& Underflow, int& Overflow, int& MaxCnt) {
  return frequencies(detail::BlockOf(Arr), &Mask, {LowCol, LowRow}, {HighCol, HighRow},
                     {FirstBin, LastBin, BinWidth}, {Distri, Underflow, Overflow, MaxCnt});
}
int FrequDistOfArray(std::span<const double> Arr, int LowIx, int HighIx, double FirstBin,
                     double LastBin, double BinWidth, TIntArray& Distri, int& Underflow,
                     int& Overflow, int& MaxCnt) {
  return frequencies(detail::BlockOf(Arr), nullptr, {LowIx}, {HighIx},
                     {FirstBin, LastBin, BinWidth}, {Distri, Underflow, Overflow, MaxCnt});
}

int EdgeVector(const TInt2DArray& Arr, TOrientation Orient, TEdgeOp EdgeOp, TDoubleArray& Dest) {
  return edgeVector(Arr, Orient, EdgeOp, Dest);
}
int EdgeVector(const TDouble2DArray& Arr, TOrientation Orient, TEdgeOp EdgeOp, TDoubleArray& Dest) {
  return edgeVector(Arr, Orient, EdgeOp, Dest);
}

}  // namespace zel
