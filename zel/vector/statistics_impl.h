/// @file
/// TNumVector: statistics and arithmetic. Included by vectorbase.cpp only.
#pragma once

#include <cmath>

#include "zel/kernels/elementwise.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/sums.h"
#include "zel/vector/order_statistics_impl.h"
#include "zel/vector/vectorbase.h"

namespace zel {

namespace detail {

// Doubles are summed in double-double, integers modulo 2^32.
inline double SumOf(std::span<const double> x) { return kernels::sum(x).hi; }
inline int SumOf(std::span<const int> x) { return static_cast<int>(kernels::integerSum(x)); }
inline double ProductOf(std::span<const double> x, std::span<const double> y) {
  return kernels::sumOfProducts(x, y).hi;
}
inline int ProductOf(std::span<const int> x, std::span<const int> y) {
  return static_cast<int>(kernels::integerSumOfProducts(x, y));
}

}  // namespace detail

template <class T>
void TNumVector<T>::RequireSameLength(const TNumVector& OtherVec) const {
  if (OtherVec.NrOfElem() != NrOfElem()) {
    Raise<EZELVectorError>("\": vectors have different dimensions");
  }
}

template <class T>
T TNumVector<T>::Sum(int LowElem, int HighElem) const {
  return detail::SumOf(Range(LowElem, HighElem));
}

template <class T>
void TNumVector<T>::MeanVar(int LowElem, int HighElem, double& Mean, double& Variance) const {
  const auto m = kernels::meanVariance(Range(LowElem, HighElem));
  Mean = m.mean;
  Variance = m.variance;
}

template <class T>
void TNumVector<T>::SkewKurt(int LowElem, int HighElem, double& Skewness, double& Kurtosis) const {
  const auto s = kernels::shape(Range(LowElem, HighElem), kernels::ShapeForm::population);
  Skewness = s.skewness;
  Kurtosis = s.kurtosis;
}

template <class T>
void TNumVector<T>::SkewKurtSample(int LowElem, int HighElem, double& Skewness,
                                   double& Kurtosis) const {
  const auto s = kernels::shape(Range(LowElem, HighElem), kernels::ShapeForm::sample);
  Skewness = s.skewness;
  Kurtosis = s.kurtosis;
}

template <class T>
double TNumVector<T>::GeometricMean(int LowElem, int HighElem) const {
  const auto mean = kernels::geometricMean(Range(LowElem, HighElem));
  if (!mean) Raise<EZELVectorError>("\": negative argument passed to GeometricMean");
  return *mean;
}

template <class T>
double TNumVector<T>::HarmonicMean(int LowElem, int HighElem) const {
  const auto mean = kernels::harmonicMean(Range(LowElem, HighElem));
  if (!mean) Raise<EZELVectorError>("\": negative or zero argument passed to HarmonicMean");
  return *mean;
}

template <class T>
void TNumVector<T>::MinMax(int LowElem, int HighElem, T& Minimum, T& Maximum) const {
  int minIx = 0;
  int maxIx = 0;
  MinMax(LowElem, HighElem, Minimum, Maximum, minIx, maxIx);
}

template <class T>
void TNumVector<T>::MinMax(int LowElem, int HighElem, T& Minimum, T& Maximum, int& MinIx,
                           int& MaxIx) const {
  MakeValidElemRange(LowElem, HighElem);
  const auto found = kernels::minMax(Range(LowElem, HighElem));
  const auto position = [&](std::size_t at) {
    return at == kernels::kNoIndex ? 0 : LowElem + static_cast<int>(at);
  };
  Minimum = found.minimum;
  Maximum = found.maximum;
  MinIx = position(found.minIndex);
  MaxIx = position(found.maxIndex);
}

template <class T>
T TNumVector<T>::Mode(int LowElem, int HighElem) const {
  TDynArray<T, 1> work = WorkCopy(LowElem, HighElem);
  return kernels::modeBySort(std::span<T>(work), [] { ProgressStep(); });
}

template <class T>
template <class Statistic>
auto TNumVector<T>::OrderStatistic(Statistic&& statistic) const {
  try {
    return statistic();
  } catch (const std::bad_alloc&) {
    Raise<EZELVectorError>("\": not enough memory on heap");
  }
}

template <class T>
bool TNumVector<T>::Quartiles(int LowElem, int HighElem, double& Q1, double& Q2, double& Q3) const {
  Q1 = Q2 = Q3 = 0;
  const auto q = OrderStatistic([&] { return detail::QuartilesOf(Range(LowElem, HighElem)); });
  Q1 = q.q1;
  Q2 = q.q2;
  Q3 = q.q3;
  return true;
}

template <class T>
double TNumVector<T>::Percentile(double prob, int LowElem, int HighElem) const {
  return OrderStatistic([&] {
    return detail::OrderStatistic(
        Range(LowElem, HighElem),
        [=](std::span<T> work, auto pass) { return kernels::percentileBySort(work, prob, pass); },
        [=](std::span<const T> range) { return kernels::percentileBySelection(range, prob); });
  });
}

template <class T>
bool TNumVector<T>::IsDichotomous(T& v1, T& v2) const {
  v1 = v2 = 0;
  if (FVec.size() < 2) return false;
  v1 = FVec[0];
  const T first = v1;
  // The scan for the second value stops at the last element, which then counts as it even if equal.
  const auto second = std::find_if(begin(), end() - 1, [&](T x) { return x != first; });
  const T other = v2 = *second != first ? *second : first;
  return std::none_of(second + 1, end(), [&](T x) { return x != first && x != other; });
}

template <class T>
T TNumVector<T>::DotProduct(const TNumVector* OtherVec) const {
  if (!OtherVec) return 0;
  RequireSameLength(*OtherVec);
  return detail::ProductOf(Elements(), OtherVec->Elements());
}

template <class T>
double TNumVector<T>::EuclideanDistance(const TNumVector* OtherVec) const {
  if (!OtherVec) return 0;
  if (OtherVec->NrOfElem() != NrOfElem()) {
    throw EZELVectorError("EuclideanDistance: dimensions of vectors do not match");
  }
  return kernels::euclideanDistance(Elements(), OtherVec->Elements());
}

template <class T>
double TNumVector<T>::PearsonCorrCoeff(const TNumVector* OtherVec) const {
  if (!OtherVec || OtherVec->NrOfElem() != NrOfElem() || NrOfElem() < 2) return 0;
  return kernels::pearsonCorrelation(Elements(), OtherVec->Elements());
}

template <class T>
void TNumVector<T>::Add(const TNumVector* OtherVec) {
  if (!OtherVec) return;
  RequireSameLength(*OtherVec);
  kernels::add(Cells(), OtherVec->Elements());
  Changed();
}

template <class T>
void TNumVector<T>::Subtract(const TNumVector* OtherVec) {
  if (!OtherVec) return;
  RequireSameLength(*OtherVec);
  kernels::subtract(Cells(), OtherVec->Elements());
  Changed();
}

template <class T>
void TNumVector<T>::SMult(T scalar) {
  kernels::scale(Cells(), scalar);
  Changed();
}

}  // namespace zel
