/// @file
/// Sums in double-double arithmetic over sixteen fixed lanes.
///
/// Lane i takes the elements whose index is i modulo 16; runs of 128 steps are folded into a
/// double-double per lane, and a fixed tree adds the lanes. The result is rounded once, at the end,
/// and has the same bits on every machine. hi + lo differs from the exact sum by at most 2^-57 of
/// itself or 2^-84 of the sum of the magnitudes of the terms, whichever is larger. Integers enter
/// exactly.
///
/// Non-finite elements give what a plain loop gives: not-a-number if one is there or infinities of
/// both signs meet, else the infinity.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "zel/kernels/double_double.h"

namespace zel::kernels {

/// hi is the rounded sum, hi + lo the accurate one. If a step leaves the double range, the sum is
/// repeated in long double; only a result that itself is beyond the range is infinite (lo is then
/// 0) or underflows. All lengths are legal; an empty sum is 0.
[[nodiscard]] DoubleDouble sum(std::span<const double> x);
[[nodiscard]] DoubleDouble sum(std::span<const std::int32_t> x);

[[nodiscard]] DoubleDouble sumOfSquares(std::span<const double> x);
[[nodiscard]] DoubleDouble sumOfSquares(std::span<const std::int32_t> x);

/// Sum of x[i] * y[i] over the length of the shorter span.
[[nodiscard]] DoubleDouble sumOfProducts(std::span<const double> x, std::span<const double> y);
[[nodiscard]] DoubleDouble sumOfProducts(std::span<const std::int32_t> x,
                                         std::span<const std::int32_t> y);

/// Sum of (x[i] - y[i])^2 over the length of the shorter span; the differences enter exactly.
[[nodiscard]] DoubleDouble sumOfSquaredDifferences(std::span<const double> x,
                                                   std::span<const double> y);
[[nodiscard]] DoubleDouble sumOfSquaredDifferences(std::span<const std::int32_t> x,
                                                   std::span<const std::int32_t> y);

/// Sum of |x[i]|.
[[nodiscard]] double sumOfMagnitudes(std::span<const double> x);

/// Arithmetic mean; 0 for no elements. Finite for finite elements.
[[nodiscard]] double mean(std::span<const double> x);
[[nodiscard]] double mean(std::span<const std::int32_t> x);

/// Square root of the sum of squares, without over- or underflow of the squares.
[[nodiscard]] double euclideanNorm(std::span<const double> x);
[[nodiscard]] double euclideanNorm(std::span<const std::int32_t> x);

/// Square root of the sum of squared differences over the shorter length, without over- or
/// underflow of the squares.
[[nodiscard]] double euclideanDistance(std::span<const double> x, std::span<const double> y);
[[nodiscard]] double euclideanDistance(std::span<const std::int32_t> x,
                                       std::span<const std::int32_t> y);

/// Sum of x[i + shift] * y[i] over the indices that both spans have, 0 if fewer than two do.
[[nodiscard]] double shiftedCrossProduct(std::span<const double> x, std::span<const double> y,
                                         std::int64_t shift);

/// Sums of integers in integer arithmetic; a result beyond 64 bits wraps.
[[nodiscard]] std::int64_t integerSum(std::span<const std::int32_t> x);
[[nodiscard]] std::int64_t integerSumOfProducts(std::span<const std::int32_t> x,
                                                std::span<const std::int32_t> y);
/// Sum of x[i] * y[i + shift] over the indices that both spans have.
[[nodiscard]] std::int64_t integerShiftedCrossProduct(std::span<const std::int32_t> x,
                                                      std::span<const std::int32_t> y,
                                                      std::int64_t shift);

/// n / (sum of 1 / x); nothing if an element is 0 or below. 0 for no elements.
[[nodiscard]] std::optional<double> harmonicMean(std::span<const double> x);
[[nodiscard]] std::optional<double> harmonicMean(std::span<const std::int32_t> x);

/// exp(mean of ln x), formed from the product of the significands, so that no digits are lost to
/// logarithms of large or tiny elements. Nothing if an element is below 0, else 0 if one is 0. 1
/// for no elements.
[[nodiscard]] std::optional<double> geometricMean(std::span<const double> x);
[[nodiscard]] std::optional<double> geometricMean(std::span<const std::int32_t> x);

}  // namespace zel::kernels
