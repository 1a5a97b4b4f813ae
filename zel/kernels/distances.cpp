// Each pair's sums run over the columns upwards, as in a plain loop; the lanes of a vector belong
// to neighbouring rows.

#include "zel/kernels/distances.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "zel/kernels/mirror.h"

#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/distances.cpp"
#include "hwy/foreach_target.h"
#include "hwy/highway.h"

#ifndef ZEL_KERNELS_DISTANCES_ONCE
#define ZEL_KERNELS_DISTANCES_ONCE
namespace zel::kernels {

/// What a mode sums up over the columns.
enum class PairSum { manhattan, squares, products };

inline PairSum pairSum(TDistMode mode) {
  if (mode == dmManhattan) return PairSum::manhattan;
  return mode == dmEuclid || mode == dmSqrEuclid ? PairSum::squares : PairSum::products;
}

/// The distance from a pair's sum and, for similarities, the sums of squares of the two rows.
inline double pairDistance(TDistMode mode, double sum, double aa, double bb) {
  switch (mode) {
    case dmTanimoto: {
      const double denominator = aa + bb - sum;
      return denominator == 0 ? 0 : sum / denominator;
    }
    case dmDice: {
      const double denominator = aa + bb;
      return denominator == 0 ? 0 : 2 * sum / denominator;
    }
    case dmEuclid:
      return std::sqrt(sum);
    case dmManhattan:
    case dmSqrEuclid:
      return sum;
    case dmUser:
      break;
  }
  return 0;
}

}  // namespace zel::kernels
#endif

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <PairSum kSum, class V>
HWY_INLINE V addTerm(V sum, V a, V b) {
  if constexpr (kSum == PairSum::products) {
    // Not a fused multiply-add, which would give other bits than a machine without it.
    return hn::Add(sum, hn::Mul(a, b));
  } else if constexpr (kSum == PairSum::manhattan) {
    return hn::Add(sum, hn::Abs(hn::Sub(a, b)));
  } else {
    const V d = hn::Sub(a, b);
    return hn::Add(sum, hn::Mul(d, d));
  }
}

// Adds the terms of the pairs of kObjects objects, starting at i, with the rows j, j + 1, ... of
// kVectors vectors.
template <PairSum kSum, std::size_t kObjects, std::size_t kVectors, class D>
HWY_INLINE void addPairs(D d, ConstMatrix objects, std::size_t i, ConstMatrix m, std::size_t j,
                         hn::Vec<D> (&sums)[kObjects][kVectors]) {
  constexpr std::size_t kLanes = hn::MaxLanes(D());
  for (auto& row : sums) {
    for (auto& sum : row) sum = hn::Zero(d);
  }
  const double* object = objects.data + i;
  const double* column = m.data + j;
  for (std::size_t c = 0; c < m.columns; ++c, object += objects.stride, column += m.stride) {
    hn::Vec<D> others[kVectors];
    for (std::size_t v = 0; v < kVectors; ++v) others[v] = hn::LoadU(d, column + v * kLanes);
    for (std::size_t k = 0; k < kObjects; ++k) {
      const auto own = hn::Set(d, object[k]);
      for (std::size_t v = 0; v < kVectors; ++v) {
        sums[k][v] = addTerm<kSum>(sums[k][v], own, others[v]);
      }
    }
  }
}

// The sums, written to the columns i, i + 1, ... of out.
template <PairSum kSum, std::size_t kObjects, std::size_t kVectors, class D>
HWY_INLINE void pairBlock(D d, ConstMatrix objects, std::size_t i, ConstMatrix m, std::size_t j,
                          Matrix out) {
  hn::Vec<D> sums[kObjects][kVectors];
  addPairs<kSum>(d, objects, i, m, j, sums);
  for (std::size_t k = 0; k < kObjects; ++k) {
    for (std::size_t v = 0; v < kVectors; ++v) {
      hn::StoreU(sums[k][v], d, out.column(i + k) + j + v * hn::MaxLanes(D()));
    }
  }
}

// Objects i.. against the rows from j on.
template <PairSum kSum, std::size_t kObjects>
void pairColumns(ConstMatrix objects, std::size_t i, ConstMatrix m, std::size_t j, Matrix out) {
  const hn::ScalableTag<double> d;
  const hn::CappedTag<double, 1> single;
  constexpr std::size_t kLanes = HWY_LANES(double);
  for (; j + 2 * kLanes <= m.rows; j += 2 * kLanes) {
    pairBlock<kSum, kObjects, 2>(d, objects, i, m, j, out);
  }
  for (; j < m.rows; ++j) pairBlock<kSum, kObjects, 1>(single, objects, i, m, j, out);
}

constexpr std::size_t kObjectsAtOnce = 4;

// With kTriangle the objects are the rows themselves, each against those from itself on; the few
// sums on and above the diagonal are overwritten later.
template <PairSum kSum, bool kTriangle>
void pairSumsOf(ConstMatrix objects, ConstMatrix m, Matrix out) {
  std::size_t i = 0;
  for (; i + kObjectsAtOnce <= objects.rows; i += kObjectsAtOnce) {
    pairColumns<kSum, kObjectsAtOnce>(objects, i, m, kTriangle ? i : 0, out);
  }
  for (; i < objects.rows; ++i) pairColumns<kSum, 1>(objects, i, m, kTriangle ? i : 0, out);
}

// Replaces the least squares and the points they belong to where the points i.. are nearer.
template <std::size_t kPoints, std::size_t kVectors, class D>
HWY_INLINE void compareWith(D d, ConstMatrix points, std::size_t i, ConstMatrix m, std::size_t j,
                            hn::Vec<D> (&least)[kVectors], hn::Vec<D> (&place)[kVectors]) {
  hn::Vec<D> sums[kPoints][kVectors];
  addPairs<PairSum::squares>(d, points, i, m, j, sums);
  for (std::size_t k = 0; k < kPoints; ++k) {
    const auto own = hn::Set(d, static_cast<double>(i + k));
    for (std::size_t v = 0; v < kVectors; ++v) {
      const auto isNearer = hn::Lt(sums[k][v], least[v]);
      least[v] = hn::IfThenElse(isNearer, sums[k][v], least[v]);
      place[v] = hn::IfThenElse(isNearer, own, place[v]);
    }
  }
}

template <std::size_t kVectors, class D>
HWY_INLINE void nearestBlock(D d, ConstMatrix points, ConstMatrix m, std::size_t j, int* nearest) {
  constexpr std::size_t kLanes = hn::MaxLanes(D());
  hn::Vec<D> least[kVectors];
  hn::Vec<D> place[kVectors];
  for (std::size_t v = 0; v < kVectors; ++v) {
    least[v] = hn::Set(d, std::numeric_limits<double>::infinity());
    place[v] = hn::Zero(d);
  }
  std::size_t i = 0;
  for (; i + kObjectsAtOnce <= points.rows; i += kObjectsAtOnce) {
    compareWith<kObjectsAtOnce>(d, points, i, m, j, least, place);
  }
  for (; i < points.rows; ++i) compareWith<1>(d, points, i, m, j, least, place);
  alignas(64) double places[kVectors * kLanes];
  for (std::size_t v = 0; v < kVectors; ++v) hn::StoreU(place[v], d, places + v * kLanes);
  for (std::size_t k = 0; k < kVectors * kLanes; ++k) nearest[j + k] = static_cast<int>(places[k]);
}

void nearestOf(ConstMatrix points, ConstMatrix m, int* nearest) {
  const hn::ScalableTag<double> d;
  const hn::CappedTag<double, 1> single;
  constexpr std::size_t kLanes = HWY_LANES(double);
  std::size_t j = 0;
  for (; j + 2 * kLanes <= m.rows; j += 2 * kLanes) nearestBlock<2>(d, points, m, j, nearest);
  for (; j < m.rows; ++j) nearestBlock<1>(single, points, m, j, nearest);
}

void takeRoots(double* x, std::size_t n) {
  const hn::ScalableTag<double> d;
  std::size_t i = 0;
  for (; i + hn::Lanes(d) <= n; i += hn::Lanes(d)) {
    hn::StoreU(hn::Sqrt(hn::LoadU(d, x + i)), d, x + i);
  }
  for (; i < n; ++i) x[i] = std::sqrt(x[i]);
}

// Sixteen lanes for every instruction set, the remainder in the first of them.
double squaresOfDifferences(const double* x, const double* y, std::size_t n) {
  constexpr std::size_t kAll = 16;
  const hn::CappedTag<double, 8> d;
  constexpr std::size_t kLanes = hn::MaxLanes(hn::CappedTag<double, 8>());
  hn::Vec<decltype(d)> sums[kAll / kLanes];
  for (auto& sum : sums) sum = hn::Zero(d);
  std::size_t i = 0;
  for (; i + kAll <= n; i += kAll) {
    for (std::size_t v = 0; v < kAll / kLanes; ++v) {
      const std::size_t at = i + v * kLanes;
      const auto difference = hn::Sub(hn::LoadU(d, x + at), hn::LoadU(d, y + at));
      sums[v] = hn::Add(sums[v], hn::Mul(difference, difference));
    }
  }
  alignas(64) double lanes[kAll];
  for (std::size_t v = 0; v < kAll / kLanes; ++v) hn::StoreU(sums[v], d, lanes + v * kLanes);
  for (std::size_t k = 0; i < n; ++i, ++k) {
    const double difference = x[i] - y[i];
    lanes[k] += difference * difference;
  }
  for (std::size_t half = kAll / 2; half > 0; half /= 2) {
    for (std::size_t k = 0; k < half; ++k) lanes[k] += lanes[k + half];
  }
  return lanes[0];
}

// The lower triangle of the sums of all pairs.
void pairSums(ConstMatrix m, PairSum sum, Matrix out) {
  if (sum == PairSum::manhattan) return pairSumsOf<PairSum::manhattan, true>(m, m, out);
  if (sum == PairSum::squares) return pairSumsOf<PairSum::squares, true>(m, m, out);
  pairSumsOf<PairSum::products, true>(m, m, out);
}

void pointSums(ConstMatrix points, ConstMatrix m, PairSum sum, Matrix out) {
  if (sum == PairSum::manhattan) return pairSumsOf<PairSum::manhattan, false>(points, m, out);
  pairSumsOf<PairSum::squares, false>(points, m, out);
}

}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(takeRoots);
HWY_EXPORT(squaresOfDifferences);
HWY_EXPORT(pairSums);
HWY_EXPORT(pointSums);
HWY_EXPORT(nearestOf);

bool isStandardDistance(TDistMode mode) { return mode < dmUser; }

double rowDistance(ConstMatrix m, TDistMode mode, std::size_t i, std::size_t j) {
  const PairSum kind = pairSum(mode);
  double sum = 0;
  double aa = 0;
  double bb = 0;
  for (std::size_t c = 0; c < m.columns; ++c) {
    const double a = i < m.rows ? m(i, c) : 0;
    const double b = j < m.rows ? m(j, c) : 0;
    const double d = a - b;
    sum += kind == PairSum::products ? a * b : kind == PairSum::squares ? d * d : std::fabs(d);
    aa += a * a;
    bb += b * b;
  }
  return pairDistance(mode, sum, aa, bb);
}

double squaredDistance(std::span<const double> x, std::span<const double> y) {
  if (x.size() > y.size()) std::swap(x, y);
  if (y.size() < 2 * 16) {
    // Done before the choice of an instruction set is made.
    double lanes[4] = {};
    for (std::size_t i = 0; i < y.size(); ++i) {
      const double d = i < x.size() ? x[i] - y[i] : y[i];
      lanes[i % 4] += d * d;
    }
    return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
  }
  const auto squares = HWY_DYNAMIC_DISPATCH(squaresOfDifferences);
  double sum = squares(x.data(), y.data(), x.size());
  static constexpr std::array<double, 256> kZeros{};
  for (std::size_t i = x.size(); i < y.size(); i += kZeros.size()) {
    sum += squares(kZeros.data(), y.data() + i, std::min(kZeros.size(), y.size() - i));
  }
  return sum;
}

void rowDistances(ConstMatrix m, TDistMode mode, Matrix distances) {
  const std::size_t n = m.rows;
  std::vector<double> squares(n);
  if (pairSum(mode) == PairSum::products) {
    for (std::size_t c = 0; c < m.columns; ++c) {
      const auto x = m[c];
      for (std::size_t r = 0; r < n; ++r) squares[r] += x[r] * x[r];
    }
  }
  HWY_DYNAMIC_DISPATCH(pairSums)(m, pairSum(mode), distances);
  const auto takeRoots = HWY_DYNAMIC_DISPATCH(takeRoots);
  for (std::size_t i = 0; i < n; ++i) {
    double* const column = distances.column(i);
    column[i] = 0;
    if (mode == dmEuclid) {
      takeRoots(column + i + 1, n - i - 1);
      continue;
    }
    for (std::size_t j = i + 1; j < n; ++j) {
      column[j] = pairDistance(mode, column[j], squares[i], squares[j]);
    }
  }
  mirrorLower(distances);
}

void sumsFromPoints(ConstMatrix points, TDistMode mode, ConstMatrix m, Matrix sums) {
  HWY_DYNAMIC_DISPATCH(pointSums)(points, m, pairSum(mode), sums);
}

void nearestPoints(ConstMatrix points, ConstMatrix m, std::span<int> nearest) {
  HWY_DYNAMIC_DISPATCH(nearestOf)(points, m, nearest.data());
}

}  // namespace zel::kernels
#endif
