/// @file
/// TNumMatrix: statistics. Included by the sources of the matrices only.
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "zel/base/Zel_univconst.h"
#include "zel/kernels/edge_values.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/rows.h"
#include "zel/kernels/sums.h"
#include "zel/matrix/container_impl.h"
#include "zel/matrix/rules_impl.h"
#include "zel/vector/histogram_impl.h"
#include "zel/vector/order_statistics_impl.h"

namespace zel {

namespace detail {

/// Calls use(k, elements) for each column (dimColumns) or row of a view.
template <class T, class Use>
void Along(TDims dim, kernels::MatrixSpan<T> view, Use&& use) {
  dim == dimColumns ? kernels::forEachColumn(view, use) : kernels::forEachRow(view, use);
}

}  // namespace detail

template <class T>
void TNumMatrix<T>::MinMax(int LowCol, int LowRow, int HighCol, int HighRow, T& Minimum,
                           T& Maximum) const {
  kernels::MinMaxStart<T> range = detail::kExtremesStart<T>;
  kernels::forEachColumn(View(Clamped(LowCol, LowRow, HighCol, HighRow)),
                         [&](std::size_t, std::span<const T> x) {
                           const auto found = kernels::minMax(x, range);
                           range = {found.minimum, found.maximum};
                         });
  Minimum = range.minimum;
  Maximum = range.maximum;
}

template <class T>
void TNumMatrix<T>::MeanVar(int LowCol, int LowRow, int HighCol, int HighRow, double& Mean,
                            double& Variance) const {
  WithCells(Clamped(LowCol, LowRow, HighCol, HighRow), [&](std::span<const T> x) {
    const auto m = x.empty() ? kernels::MeanVariance{0, 0} : kernels::meanVariance(x);
    Mean = m.mean;
    Variance = m.variance;
  });
}

template <class T>
double TNumMatrix<T>::GeometricMean(int LowCol, int LowRow, int HighCol, int HighRow) const {
  const auto mean = WithCells(Clamped(LowCol, LowRow, HighCol, HighRow),
                              [](std::span<const T> x) { return kernels::geometricMean(x); });
  if (!mean) Raise<EZELMatrixError>("\": negative argument passed to GeometricMean");
  return *mean;
}

template <class T>
double TNumMatrix<T>::HarmonicMean(int LowCol, int LowRow, int HighCol, int HighRow) const {
  const auto mean = WithCells(Clamped(LowCol, LowRow, HighCol, HighRow),
                              [](std::span<const T> x) { return kernels::harmonicMean(x); });
  if (!mean) Raise<EZELMatrixError>("\": negative or zero argument passed to HarmonicMean");
  return *mean;
}

template <class T>
void TNumMatrix<T>::SkewKurt(int LowCol, int LowRow, int HighCol, int HighRow, double& Skewness,
                             double& Kurtosis) const {
  const auto shape = WithCells(Clamped(LowCol, LowRow, HighCol, HighRow), [](std::span<const T> x) {
    return kernels::shape(x, kernels::ShapeForm::population, 2);
  });
  Skewness = shape.skewness;
  Kurtosis = shape.kurtosis;
}

template <class T>
void TNumMatrix<T>::SkewKurtSample(int LowCol, int LowRow, int HighCol, int HighRow,
                                   double& Skewness, double& Kurtosis) const {
  const auto shape = WithCells(Clamped(LowCol, LowRow, HighCol, HighRow), [](std::span<const T> x) {
    return kernels::shape(x, kernels::ShapeForm::sample);
  });
  Skewness = shape.skewness;
  Kurtosis = shape.kurtosis;
}

template <class T>
bool TNumMatrix<T>::Quartiles(int LowCol, int LowRow, int HighCol, int HighRow, double& Q1,
                              double& Q2, double& Q3) const {
  Q1 = Q2 = Q3 = 0;
  const TCells cells = Clamped(LowCol, LowRow, HighCol, HighRow);
  if (cells.Count() == 0) return false;
  const auto q = Guarded([&] {
    return WithCells(cells, [](std::span<const T> x) { return detail::QuartilesOf(x); });
  });
  Q1 = q.q1;
  Q2 = q.q2;
  Q3 = q.q3;
  return true;
}

template <class T>
double TNumMatrix<T>::Percentile(double prob, int LowCol, int LowRow, int HighCol,
                                 int HighRow) const {
  const TCells cells = Clamped(LowCol, LowRow, HighCol, HighRow);
  if (cells.Count() == 0) return 0;
  return Guarded([&] {
    return WithCells(cells, [&](std::span<const T> x) { return detail::RankedValue(x, prob); });
  });
}

template <class T>
double TNumMatrix<T>::Percentile(double prob, int LowCol, int LowRow, int HighCol, int HighRow,
                                 int SampleSize) const {
  const TCells cells = Clamped(LowCol, LowRow, HighCol, HighRow);
  if (SampleSize <= 0 || cells.Count() <= static_cast<std::size_t>(SampleSize)) {
    return Percentile(prob, LowCol, LowRow, HighCol, HighRow);
  }
  const auto sample = Guarded([&] {
    return detail::RandomSample<T>(SampleSize, [&] {
      const int c = detail::RandomBetween(cells.LowCol, cells.HighCol);
      return GetVal(c, detail::RandomBetween(cells.LowRow, cells.HighRow));
    });
  });
  std::size_t negatives = 0;
  std::size_t zeros = 0;
  for (const T x : sample) {
    if (x < 0) ++negatives;
    if (x == 0) ++zeros;
  }
  const double p = std::clamp(prob, 0.0, 100.0) / 100;
  const double n = SampleSize;
  if (static_cast<double>(negatives) / n < p && p < static_cast<double>(negatives + zeros) / n) {
    return 0;
  }
  return Guarded([&] { return detail::RankedValue(std::span<const T>(sample), prob); });
}

template <class T>
bool TNumMatrix<T>::Histogram(int LoX, int LoY, int HiX, int HiY, T FirstBin, T LastBin, T BinWidth,
                              TIntVector* Histo, int& Underflow, int& Overflow, int& MaxCnt) const {
  const int bins = detail::AcceptedBins(FirstBin, LastBin, BinWidth);
  if (!Histo || bins < 1) return false;
  const TCells cells = Clamped(LoX, LoY, HiX, HiY);
  detail::CountInto(*Histo, FirstBin, LastBin, BinWidth, bins, Underflow, Overflow, MaxCnt,
                    [&](auto& counter) {
                      for (int c = cells.LowCol; c <= cells.HighCol; ++c) {
                        for (int r = cells.LowRow; r <= cells.HighRow; ++r) {
                          counter.add(GetVal(c, r));
                        }
                      }
                    });
  return true;
}

template <class T>
int TNumMatrix<T>::CountValues(int LowCol, int HighCol, int LowRow, int HighRow, T RangeLow,
                               T RangeHigh) const {
  std::size_t count = 0;
  kernels::forEachColumn(View(Clamped(LowCol, LowRow, HighCol, HighRow)),
                         [&](std::size_t, std::span<const T> column) {
                           for (const T x : column) count += RangeLow <= x && x <= RangeHigh;
                         });
  return static_cast<int>(count);
}

template <class T>
int TNumMatrix<T>::Dichotomize(T Threshold, TBool2DArray& ResultArray) const {
  Guarded([&] { ResultArray.SetLength(FNCol, FNRow); });
  std::size_t count = 0;
  bool* result = ResultArray.data();
  for (const T x : Elements()) {
    const bool above = x > Threshold;
    *result++ = above;
    count += above;
  }
  return static_cast<int>(count);
}

template <class T>
void TNumMatrix<T>::MeanVec(TDims Dim, TVector* Means) const {
  if (!Means) return;
  EdgeVector(Dim == dimRows ? orVertical : orHorizontal, eoMean, Means);
}

template <class T>
void TNumMatrix<T>::EdgeVector(TOrientation Orient, TEdgeOp EdgeOp, TVector* DestVec) const {
  if (!DestVec) return;
  std::vector<double> result;
  Guarded([&] {
    const int edges = Orient == orVertical ? FNRow : FNCol;
    result.resize(static_cast<std::size_t>(std::max(1, edges)));
    kernels::edgeValues<T>(View(), Orient, EdgeOp, result);
  });
  DestVec->Resize(static_cast<int>(result.size()));
  for (std::size_t k = 0; k < result.size(); ++k)
    DestVec->SetVal(static_cast<int>(k + 1), result[k]);
}

}  // namespace zel
