// Each pair's sums run over the columns upwards, as in a plain loop; the lanes of a vector belong
// to neighbouring rows.

#include "zel/kernels/distances.h"

#include <algorithm>
#include <cmath>
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

// Sums of the pairs of kObjects rows, starting at i, with rows j, j + 1, ... of kVectors vectors;
// written to the columns i, i + 1, ... of out.
template <PairSum kSum, std::size_t kObjects, std::size_t kVectors, class D>
HWY_INLINE void pairBlock(D d, ConstMatrix m, std::size_t i, std::size_t j, Matrix out) {
  constexpr std::size_t kLanes = hn::MaxLanes(D());
  hn::Vec<D> sums[kObjects][kVectors];
  for (auto& row : sums) {
    for (auto& sum : row) sum = hn::Zero(d);
  }
  const double* column = m.data;
  for (std::size_t c = 0; c < m.columns; ++c, column += m.stride) {
    hn::Vec<D> others[kVectors];
    for (std::size_t v = 0; v < kVectors; ++v) others[v] = hn::LoadU(d, column + j + v * kLanes);
    for (std::size_t k = 0; k < kObjects; ++k) {
      const auto own = hn::Set(d, column[i + k]);
      for (std::size_t v = 0; v < kVectors; ++v) {
        sums[k][v] = addTerm<kSum>(sums[k][v], own, others[v]);
      }
    }
  }
  for (std::size_t k = 0; k < kObjects; ++k) {
    for (std::size_t v = 0; v < kVectors; ++v) {
      hn::StoreU(sums[k][v], d, out.column(i + k) + j + v * kLanes);
    }
  }
}

// Rows i.. against all rows from i on; the few sums on and above the diagonal are overwritten
// later.
template <PairSum kSum, std::size_t kObjects>
void pairColumns(ConstMatrix m, std::size_t i, Matrix out) {
  const hn::ScalableTag<double> d;
  const hn::CappedTag<double, 1> single;
  constexpr std::size_t kLanes = HWY_LANES(double);
  std::size_t j = i;
  for (; j + 2 * kLanes <= m.rows; j += 2 * kLanes) pairBlock<kSum, kObjects, 2>(d, m, i, j, out);
  for (; j < m.rows; ++j) pairBlock<kSum, kObjects, 1>(single, m, i, j, out);
}

template <PairSum kSum>
void pairSumsOf(ConstMatrix m, Matrix out) {
  constexpr std::size_t kObjects = 4;
  std::size_t i = 0;
  for (; i + kObjects <= m.rows; i += kObjects) pairColumns<kSum, kObjects>(m, i, out);
  for (; i < m.rows; ++i) pairColumns<kSum, 1>(m, i, out);
}

// The lower triangle of the sums of all pairs.
void pairSums(ConstMatrix m, PairSum sum, Matrix out) {
  if (sum == PairSum::manhattan) return pairSumsOf<PairSum::manhattan>(m, out);
  if (sum == PairSum::squares) return pairSumsOf<PairSum::squares>(m, out);
  pairSumsOf<PairSum::products>(m, out);
}

}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(pairSums);

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
  for (std::size_t i = 0; i < n; ++i) {
    double* const column = distances.column(i);
    column[i] = 0;
    for (std::size_t j = i + 1; j < n; ++j) {
      column[j] = pairDistance(mode, column[j], squares[i], squares[j]);
    }
  }
  mirrorLower(distances);
}

}  // namespace zel::kernels
#endif
