/// @file
/// The engine of the double-double reductions: which sums there are, the fast path over sixteen
/// lanes and the slow path in long double. sums.h and moments.h are what callers want.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

#include "zel/base/types.h"
#include "zel/kernels/double_double.h"

namespace zel::kernels {

enum class SumKind : std::uint8_t {
  sum,
  squares,
  products,
  squaredDifferences,
  rawMoments,
  centredMoments,
  centredPowers,
  centredProducts,
  centredCross
};

#include "zel/kernels/sum_terms-inl.h"

/// Writes the sums of the kind as pairs hi, lo. A part is not finite if an element is not finite or
/// a step left the double range.
void laneSums(SumKind kind, const double* x, const double* y, std::size_t n,
              const Centre<double>& centre, double* out);
void laneSums(SumKind kind, const std::int32_t* x, const std::int32_t* y, std::size_t n,
              const Centre<double>& centre, double* out);

/// Sums in one number type: double is the fast path, long double the slow one with the wide range.
template <class Terms, class Number>
using Sums = std::array<Twofold<Number>, Terms::kSums>;

/// The sums of Terms over the elements x (and y, of the same length; unary terms take x twice).
template <class Terms, class Number, class T>
[[nodiscard]] Sums<Terms, Number> sumsOf(std::span<const T> x, std::span<const T> y,
                                         const Centre<Number>& centre = {0, 0}) {
  Sums<Terms, Number> sums;
  if constexpr (std::is_same_v<Number, double>) {
    std::array<double, 2 * Terms::kSums> parts;
    laneSums(Terms::kKind, x.data(), y.data(), x.size(), centre, parts.data());
    for (std::size_t k = 0; k < Terms::kSums; ++k) sums[k] = {parts[2 * k], parts[2 * k + 1]};
  } else {
    std::array<Number, Terms::kSums> s{};
    std::array<Number, Terms::kSums> e{};
    for (std::size_t i = 0; i < x.size(); ++i) {
      Terms::add(static_cast<Number>(x[i]), static_cast<Number>(y[i]), centre, s.data(), e.data(),
                 OnAdder{});
    }
    // Nothing overflows here, so a sum that is not finite is what a plain loop gives.
    for (std::size_t k = 0; k < Terms::kSums; ++k) {
      sums[k] = std::isfinite(s[k]) ? twoSum(s[k], e[k]) : Twofold<Number>{s[k], 0};
    }
  }
  return sums;
}

/// Relative to the sum of the magnitudes of the terms, the error of a fast sum stays below this:
/// 2^-91 for the runs and 3 * 2^-106 for every run that is folded.
[[nodiscard]] inline double fastSumError(std::size_t n) {
  return 0x1p-91 + static_cast<double>(n / 2048) * 0x1p-104;
}

/// Below this a sum of squares may have lost terms to underflow.
inline constexpr double kSmallSquares = 0x1p-900;

}  // namespace zel::kernels
