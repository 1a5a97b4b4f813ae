/// @file
/// Moments of one sample and of pairs: mean, variance, skewness, kurtosis, correlation.
///
/// Everything is accumulated in double-double (see sums.h) and rounded once. Where the one-pass
/// formula would cancel too many digits, a second pass works about the mean, so that the results
/// are those of the exact formula to an ulp or two whatever the offset of the data. Data whose
/// squares or higher powers leave the double range are treated in long double. Non-finite elements
/// make the results that depend on them not-a-number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "zel/kernels/double_double.h"

namespace zel::kernels {

/// Mean and sample variance (divisor n - 1).
struct MeanVariance {
  double mean = 0;
  double variance = 1;
};

/// For fewer than three elements the variance is 1. Constant data have variance 0 exactly, no
/// result is negative. Mean 0 for no elements. One pass in most cases.
[[nodiscard]] MeanVariance meanVariance(std::span<const double> x);
[[nodiscard]] MeanVariance meanVariance(std::span<const std::int32_t> x);

/// Skewness and excess kurtosis.
struct Shape {
  double skewness = 0;
  double kurtosis = 0;
};

enum class ShapeForm {
  population,  ///< m3 / sd^3 and m4 / sd^4 - 3, where sd has the divisor n - 1
  sample       ///< the population values with the small-sample correction factors
};

/// Both 0 for fewer elements than the least number, which is at least 2, for the sample form 4.
/// Constant data: 0 in the population form, the corrected value of 0 in the sample form.
[[nodiscard]] Shape shape(std::span<const double> x, ShapeForm form, std::size_t least = 4);
[[nodiscard]] Shape shape(std::span<const std::int32_t> x, ShapeForm form, std::size_t least = 4);

/// Sums of squares and products of the deviations from the means.
struct CentredProducts {
  DoubleDouble meanX, meanY;
  DoubleDouble xx, yy, xy;
};

/// Two passes over the shorter length. Non-finite parts mean that the data left the double range.
[[nodiscard]] CentredProducts centredProducts(std::span<const double> x, std::span<const double> y);
[[nodiscard]] CentredProducts centredProducts(std::span<const std::int32_t> x,
                                              std::span<const std::int32_t> y);

/// Pearson's product-moment correlation. 0 if the lengths differ, for fewer than two pairs, and if
/// x or y is constant. Limited to -1..1.
[[nodiscard]] double pearsonCorrelation(std::span<const double> x, std::span<const double> y);
[[nodiscard]] double pearsonCorrelation(std::span<const std::int32_t> x,
                                        std::span<const std::int32_t> y);

}  // namespace zel::kernels
